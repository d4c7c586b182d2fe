// Sections of the measuring instrument.
#include "instrument/measuring_sections.h"

#include <nlohmann/json.hpp>

#include "instrument/angles.h"
#include "instrument/distance_meter.h"
#include "instrument/event_window.h"
#include "instrument/field_section.h"
#include "instrument/focus_side.h"
#include "instrument/switches.h"

namespace host::instrument {
namespace {

constexpr std::int64_t kLongestMs = 3600000;

struct PoseMember {
  const char* name;
  double Pose::*value;
};

std::vector<Field> PoseFields(std::initializer_list<PoseMember> members) {
  std::vector<Field> fields;
  for (const PoseMember& member : members) {
    const auto value = member.value;
    fields.push_back(NumberField(
        member.name, [value] { return Angles::Instance().pose().*value; },
        [value](double radians) { Angles::Instance().Change([=](Pose& pose) { pose.*value = radians; }); }, 0.0));
  }
  return fields;
}

std::vector<Field> DistanceFields() {
  DistanceMeter& meter = DistanceMeter::Instance();
  return {NumberField(
              "slope", [&] { return meter.state().slope; }, [&](double metres) { meter.SetSlope(metres); },
              DistanceMeter::kStandardSlope),
          IntegerField(
              "takes_ms", [&] { return std::int64_t{meter.state().takes_ms}; },
              [&](std::int64_t time) { meter.SetTakesMs(static_cast<std::uint32_t>(time)); },
              DistanceMeter::kStandardTakesMs, 0, kLongestMs),
          BoolField(
              "valid", [&] { return meter.state().valid; }, [&](bool valid) { meter.SetValid(valid); }, false)};
}

std::vector<Field> MeasurementFields() {
  DistanceMeter& meter = DistanceMeter::Instance();
  Field running = ReadOnlyField("running", [&] { return Json(meter.state().running); });
  running.reset = [&] { meter.Reset(); };
  return {running, ReadOnlyField("mode", [&] { return Json(meter.state().mode); }),
          ReadOnlyField("target", [&] { return Json(meter.state().target); })};
}

/// A number of the focus block.
template <class Number>
Field BlockField(const char* name, Number FocusBlockData::*member) {
  Field field = IntegerField(
      name, [member] { return static_cast<std::int64_t>(FocusSide::Instance()->Read().*member); },
      [member](std::int64_t value) {
        FocusSide::Instance()->Change([=](FocusBlockData& block) { block.*member = static_cast<Number>(value); });
      },
      0, std::numeric_limits<Number>::min(), std::numeric_limits<Number>::max());
  field.reset = nullptr;  // the focusing side resets its block whole
  return field;
}

struct AnswerName {
  FocusAnswer answer;
  const char* name;
};
constexpr AnswerName kAnswers[] = {
    {FocusAnswer::kSuccess, "success"}, {FocusAnswer::kFailure, "failure"}, {FocusAnswer::kSilence, "silence"}};

std::string AnswerText() {
  for (const AnswerName& known : kAnswers) {
    if (known.answer == FocusSide::Instance()->answer()) return known.name;
  }
  return {};
}

void SetAnswer(const std::string& name) {
  for (const AnswerName& known : kAnswers) {
    if (known.name == name) FocusSide::Instance()->SetAnswer(known.answer);
  }
}

std::vector<Field> FocusFields() {
  Field takes = IntegerField(
      "takes_ms", [] { return std::int64_t{FocusSide::Instance()->takes_ms()}; },
      [](std::int64_t time) { FocusSide::Instance()->SetTakesMs(static_cast<std::uint32_t>(time)); },
      FocusSide::kStandardTakesMs, 0, kLongestMs);
  takes.reset = [] { FocusSide::Instance()->Reset(); };
  return {BlockField("state", &FocusBlockData::state),
          BlockField("position", &FocusBlockData::position),
          BlockField("distance", &FocusBlockData::distance),
          BlockField("manual", &FocusBlockData::manual),
          BlockField("auto", &FocusBlockData::automatic),
          BlockField("event", &FocusBlockData::event),
          BlockField("owner", &FocusBlockData::owner),
          ChoiceField("answers", AnswerText, SetAnswer, "success", {"success", "failure", "silence"}),
          takes};
}

/// "switches": a list of the four values, by number.
class SwitchSection final : public StateSection {
 public:
  std::string Name() const override { return "switches"; }

  Json ToJson() const override {
    Json values = Json::array();
    for (std::int32_t number = 0; number < Switches::kCount; ++number) {
      std::int32_t value = 0;
      Switches::Instance().Get(number, &value);
      values.push_back(value);
    }
    return values;
  }

  void Check(const Json& patch) const override {
    bool good = patch.is_array() && patch.size() == static_cast<std::size_t>(Switches::kCount);
    for (std::size_t i = 0; good && i < patch.size(); ++i) {
      good = patch[i].is_number_integer() && patch[i] >= INT32_MIN && patch[i] <= INT32_MAX;
    }
    if (!good) throw StateError("switches: a list of four whole numbers is expected");
  }

  void Apply(const Json& patch) override {
    for (std::int32_t number = 0; number < Switches::kCount; ++number) {
      Switches::Instance().Set(number, patch[static_cast<std::size_t>(number)].get<std::int32_t>());
    }
  }

  void Reset() override { Apply(Json({0, 0, 0, 0})); }
};

}  // namespace

std::vector<std::unique_ptr<StateSection>> MakeMeasuringSections() {
  std::vector<std::unique_ptr<StateSection>> sections;
  const auto add = [&sections](const char* name, std::vector<Field> fields, std::function<void()> changed = nullptr) {
    sections.push_back(std::make_unique<FieldSection>(name, std::move(fields), std::move(changed)));
  };
  add("angles", PoseFields({{"HAF", &Pose::haf}, {"VAF", &Pose::vaf}, {"HAR", &Pose::har}, {"VAR", &Pose::var}}),
      [] { DeliverEvents(kAngleEvent); });
  add("tilt", PoseFields({{"XTL", &Pose::xtl}, {"YTL", &Pose::ytl}}), [] { DeliverEvents(kTiltEvent); });
  add("distance", DistanceFields());
  add("measurement", MeasurementFields());
  sections.push_back(std::make_unique<SwitchSection>());
  return sections;
}

std::unique_ptr<StateSection> MakeFocusSection() { return std::make_unique<FieldSection>("focus", FocusFields()); }

}  // namespace host::instrument
