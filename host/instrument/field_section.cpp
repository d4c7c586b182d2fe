#include "instrument/field_section.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "instrument/json_values.h"

namespace host::instrument {

Field ReadOnlyField(std::string name, std::function<Json()> get) {
  return {std::move(name), std::move(get), nullptr, nullptr, nullptr};
}

Field BoolField(std::string name, std::function<bool()> get, std::function<void(bool)> set, bool standard) {
  const auto check = [](const Json& value) {
    if (!value.is_boolean()) throw StateError("true or false is expected");
  };
  return {std::move(name), [get] { return Json(get()); }, check, [set](const Json& value) { set(value.get<bool>()); },
          [set, standard] { set(standard); }};
}

Field IntegerField(std::string name, std::function<std::int64_t()> get, std::function<void(std::int64_t)> set,
                   std::int64_t standard, std::int64_t lowest, std::int64_t highest) {
  const auto check = [lowest, highest](const Json& value) {
    if (IsWhole(value, lowest, highest)) return;
    throw StateError("a whole number from " + std::to_string(lowest) + " to " + std::to_string(highest) +
                     " is expected");
  };
  return {std::move(name), [get] { return Json(get()); }, check,
          [set](const Json& value) { set(value.get<std::int64_t>()); }, [set, standard] { set(standard); }};
}

Field NumberField(std::string name, std::function<double()> get, std::function<void(double)> set, double standard) {
  const auto check = [](const Json& value) {
    if (!value.is_number()) throw StateError("a number is expected");
  };
  return {std::move(name), [get] { return Json(get()); }, check, [set](const Json& value) { set(value.get<double>()); },
          [set, standard] { set(standard); }};
}

Field ChoiceField(std::string name, std::function<std::string()> get, std::function<void(const std::string&)> set,
                  std::string standard, std::vector<std::string> choices) {
  const auto check = [choices](const Json& value) {
    const bool known =
        value.is_string() && std::find(choices.begin(), choices.end(), value.get<std::string>()) != choices.end();
    if (known) return;
    std::string expected;
    for (const std::string& choice : choices) expected += (expected.empty() ? "" : ", ") + choice;
    throw StateError("one of these is expected: " + expected);
  };
  return {std::move(name), [get] { return Json(get()); }, check,
          [set](const Json& value) { set(value.get<std::string>()); }, [set, standard] { set(standard); }};
}

FieldSection::FieldSection(std::string name, std::vector<Field> fields, std::function<void()> changed)
    : name_(std::move(name)), fields_(std::move(fields)), changed_(std::move(changed)) {}

const Field& FieldSection::Find(const std::string& member) const {
  for (const Field& field : fields_) {
    if (field.name == member) return field;
  }
  throw StateError("unknown member: " + name_ + "." + member);
}

Json FieldSection::ToJson() const {
  Json section = Json::object();
  for (const Field& field : fields_) section[field.name] = field.get();
  return section;
}

void FieldSection::Check(const Json& patch) const {
  if (!patch.is_object()) throw StateError(name_ + ": an object is expected");
  for (const auto& member : patch.items()) {
    const Field& field = Find(member.key());
    if (!field.check) throw StateError(name_ + "." + field.name + " is read-only");
    try {
      field.check(member.value());
    } catch (const StateError& error) {
      throw StateError(name_ + "." + field.name + ": " + error.what());
    }
  }
}

void FieldSection::Apply(const Json& patch) {
  for (const Field& field : fields_) {
    const auto member = patch.find(field.name);
    if (member != patch.end()) field.set(*member);
  }
  if (changed_) changed_();
}

void FieldSection::Reset() {
  for (const Field& field : fields_) {
    if (field.reset) field.reset();
  }
  if (changed_) changed_();
}

}  // namespace host::instrument
