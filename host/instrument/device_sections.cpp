// Sections of the devices that the library reaches through drivers.
#include "instrument/device_sections.h"

#include <limits>
#include <nlohmann/json.hpp>

#include "common/text/hex.h"
#include "instrument/gpio.h"
#include "instrument/group_section.h"
#include "instrument/radio.h"
#include "instrument/sensors.h"

namespace host::instrument {
namespace {

constexpr std::int64_t kLongestMs = 3600000;
constexpr std::size_t kLongestAnswer = 1024;

// Fields of the sensors have no reset of their own: the sensors are reset as one.

template <class OneSensor>
Field PresentField(OneSensor SensorSet::*sensor) {
  Field field = BoolField(
      "present", [=] { return Sensors::Instance().Use([=](SensorSet& set) { return (set.*sensor).present; }); },
      [=](bool present) { Sensors::Instance().Use([=](SensorSet& set) { (set.*sensor).present = present; }); }, true);
  field.reset = nullptr;
  return field;
}

template <class OneSensor, class Number>
Field SensorNumber(const char* name, OneSensor SensorSet::*sensor, Number OneSensor::*member) {
  using Limits = std::numeric_limits<Number>;
  Field field = IntegerField(
      name, [=] { return Sensors::Instance().Use([=](SensorSet& set) { return std::int64_t{set.*sensor.*member}; }); },
      [=](std::int64_t value) {
        Sensors::Instance().Use([=](SensorSet& set) { set.*sensor.*member = static_cast<Number>(value); });
      },
      0, Limits::min(), Limits::max());
  field.reset = nullptr;
  return field;
}

void CheckVersion(const Json& value) {
  bool good = value.is_array() && value.size() == Version().size();
  for (std::size_t i = 0; good && i < value.size(); ++i) {
    good = value[i].is_number_integer() && value[i] >= 0 && value[i] <= 0xFF;
  }
  if (!good) throw StateError("a list of four whole numbers from 0 to 255 is expected");
}

template <class OneSensor>
Field VersionField(const char* name, OneSensor SensorSet::*sensor, Version OneSensor::*member) {
  const auto get = [=] { return Sensors::Instance().Use([=](SensorSet& set) { return Json(set.*sensor.*member); }); };
  const auto set_version = [=](const Json& value) {
    Version version = {};
    for (std::size_t i = 0; i < version.size(); ++i) version[i] = value[i].get<std::uint8_t>();
    Sensors::Instance().Use([&](SensorSet& set) { set.*sensor.*member = version; });
  };
  return {name, get, CheckVersion, set_version, nullptr};
}

std::optional<Bytes> AnswerOf(const Json& value) {
  return value.is_string() ? BytesOfHex(value.get_ref<const std::string&>()) : std::nullopt;
}

Field AnswerField() {
  const auto get = [] {
    const Bytes answer = Sensors::Instance().Use([](SensorSet& set) { return set.temperature.answer; });
    return Json(HexOf(answer.data(), answer.size()));
  };
  const auto check = [](const Json& value) {
    const auto answer = AnswerOf(value);
    if (!answer) throw StateError("a text of pairs of hexadecimal digits is expected");
    if (answer->size() > kLongestAnswer) throw StateError("1024 bytes at most are expected");
  };
  const auto set_answer = [](const Json& value) {
    Sensors::Instance().Use([&](SensorSet& set) { set.temperature.answer = *AnswerOf(value); });
  };
  return {"answer", get, check, set_answer, nullptr};
}

std::unique_ptr<StateSection> MakeSensorSection() {
  constexpr auto kEdm = &SensorSet::edm;
  constexpr auto kAngle = &SensorSet::angle;
  constexpr auto kFocus = &SensorSet::focus;
  std::vector<GroupSection::Member> members = {
      {"edm",
       {PresentField(kEdm), SensorNumber("offset", kEdm, &EdmSensor::offset),
        VersionField("version", kEdm, &EdmSensor::version), SensorNumber("checksum", kEdm, &EdmSensor::checksum),
        VersionField("fpga_version", kEdm, &EdmSensor::fpga_version)}},
      {"angle",
       {PresentField(kAngle), SensorNumber("x", kAngle, &AngleSensor::x), SensorNumber("y", kAngle, &AngleSensor::y),
        SensorNumber("tilt_switch", kAngle, &AngleSensor::tilt_switch),
        VersionField("version", kAngle, &AngleSensor::version),
        SensorNumber("checksum", kAngle, &AngleSensor::checksum)}},
      {"focus",
       {PresentField(kFocus), SensorNumber("status", kFocus, &FocusDrive::status),
        VersionField("version", kFocus, &FocusDrive::version),
        SensorNumber("checksum", kFocus, &FocusDrive::checksum)}},
      {"temperature", {PresentField(&SensorSet::temperature), AnswerField()}}};
  return std::make_unique<GroupSection>("sensors", std::move(members), [] { Sensors::Instance().Reset(); });
}

/// "gpio": the levels by line. Only the library drives lines.
class GpioSection final : public StateSection {
 public:
  std::string Name() const override { return "gpio"; }

  Json ToJson() const override {
    Json lines = Json::object();
    for (const auto& [line, level] : Gpio::Instance().levels()) lines[std::to_string(line)] = level;
    return lines;
  }

  void Check(const Json& patch) const override {
    if (!patch.is_object()) throw StateError("gpio: an object is expected");
    if (!patch.empty()) throw StateError("gpio." + patch.begin().key() + " is read-only");
  }

  void Apply(const Json&) override {}
  void Reset() override { Gpio::Instance().Reset(); }
};

std::unique_ptr<StateSection> MakeRadioSection() {
  Radio& radio = Radio::Instance();
  std::vector<Field> fields = {
      IntegerField(
          "mode", [&] { return std::int64_t{radio.mode()}; },
          [&](std::int64_t mode) { radio.SetMode(static_cast<std::uint32_t>(mode)); }, Radio::kDiscoverable, 0,
          Radio::kDiscoverable),
      BoolField(
          "can_switch", [&] { return radio.can_switch(); }, [&](bool can) { radio.SetCanSwitch(can); }, true),
      IntegerField(
          "port_up_after_ms", [&] { return std::int64_t{radio.port_up_after_ms()}; },
          [&](std::int64_t time) { radio.SetPortUpAfterMs(static_cast<std::uint32_t>(time)); }, 0, 0, kLongestMs)};
  return std::make_unique<FieldSection>("radio", std::move(fields));
}

}  // namespace

std::vector<std::unique_ptr<StateSection>> MakeDeviceSections() {
  std::vector<std::unique_ptr<StateSection>> sections;
  sections.push_back(MakeSensorSection());
  sections.push_back(std::make_unique<GpioSection>());
  sections.push_back(MakeRadioSection());
  return sections;
}

}  // namespace host::instrument
