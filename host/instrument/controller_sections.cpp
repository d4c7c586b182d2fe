#include "instrument/controller_sections.h"

#include <nlohmann/json.hpp>

#include "common/system/identity.h"
#include "common/system/power.h"
#include "common/system/programs.h"
#include "instrument/battery.h"
#include "instrument/event_window.h"
#include "instrument/field_section.h"

namespace host::instrument {
namespace {

Field LevelField(const char* name, std::uint32_t BatteryLevels::*level) {
  return IntegerField(
      name, [level] { return std::int64_t{Battery::Instance().levels().*level}; },
      [level](std::int64_t value) {
        Battery::Instance().Change([=](BatteryLevels& levels) { levels.*level = static_cast<std::uint32_t>(value); });
      },
      BatteryLevels().*level, 0, UINT32_MAX);
}

struct PowerName {
  std::uint32_t state;
  const char* name;
};
constexpr PowerName kPowerNames[] = {
    {kPowerOn, "on"}, {kPowerSuspend, "suspend"}, {kPowerReset, "reset"}, {kPowerOff, "off"}};

std::string PowerText() {
  for (const PowerName& known : kPowerNames) {
    if (known.state == host::PowerState()) return known.name;
  }
  return {};
}

void SetPower(const std::string& name) {
  for (const PowerName& known : kPowerNames) {
    if (known.name == name) host::RecordPowerState(known.state);
  }
}

constexpr int kShifts[] = {24, 16, 8, 0};

Json RevisionJson(std::uint32_t revision) {
  Json numbers = Json::array();
  for (const int shift : kShifts) numbers.push_back(revision >> shift & 0xFF);
  return numbers;
}

void CheckRevision(const Json& value) {
  bool good = value.is_array() && value.size() == std::size(kShifts);
  for (std::size_t i = 0; good && i < value.size(); ++i) {
    good = value[i].is_number_integer() && value[i] >= 0 && value[i] <= 0xFF;
  }
  if (!good) throw StateError("a list of four whole numbers from 0 to 255 is expected");
}

void SetRevision(const Json& numbers) {
  std::uint32_t revision = 0;
  for (const Json& number : numbers) revision = revision << 8 | number.get<std::uint32_t>();
  host::SetOsRevision(revision);
}

Field RevisionField() {
  return {"os_revision", [] { return RevisionJson(host::OsRevision()); }, CheckRevision, SetRevision,
          [] { host::SetOsRevision(kStandardOsRevision); }};
}

Field LanguageField() {
  return IntegerField(
      "language", [] { return std::int64_t{host::SystemLanguage()}; },
      [](std::int64_t number) { host::SetSystemLanguage(static_cast<std::uint16_t>(number)); }, kStandardLanguage, 0,
      UINT16_MAX);
}

Field PowerField() {
  Field power = ChoiceField("power", PowerText, SetPower, "on", {"on", "suspend", "reset", "off"});
  power.reset = [] {
    host::RecordPowerState(kPowerOn);
    host::ForgetStartedPrograms();
  };
  return power;
}

}  // namespace

std::unique_ptr<StateSection> MakeBatterySection() {
  std::vector<Field> fields = {LevelField("left", &BatteryLevels::left), LevelField("right", &BatteryLevels::right),
                               LevelField("external", &BatteryLevels::external),
                               LevelField("source", &BatteryLevels::source)};
  return std::make_unique<FieldSection>("battery", std::move(fields), [] { DeliverEvents(kBatteryEvent); });
}

std::unique_ptr<StateSection> MakeSystemSection() {
  return std::make_unique<FieldSection>("system", std::vector<Field>{RevisionField(), LanguageField(), PowerField()});
}

}  // namespace host::instrument
