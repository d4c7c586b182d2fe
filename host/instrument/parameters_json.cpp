// The parameters in the state document.
#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>

#include "instrument/json_values.h"
#include "instrument/parameters.h"

namespace host::instrument {
namespace {

struct Special {
  const char* text;
  double value;
};
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr Special kSpecials[] = {
    {"inf", kInfinity}, {"-inf", -kInfinity}, {"nan", kNotANumber}, {"-nan", -kNotANumber}};

Json DoubleToJson(double value) {
  if (std::isfinite(value)) return value;
  for (const Special& special : kSpecials) {
    const bool same_kind = std::isnan(special.value) == std::isnan(value);
    if (same_kind && std::signbit(special.value) == std::signbit(value)) return special.text;
  }
  return nullptr;
}

double DoubleOf(const Json& json) {
  if (json.is_number()) return json.get<double>();
  for (const Special& special : kSpecials) {
    if (json == special.text) return special.value;
  }
  throw StateError("a number is expected, or one of these: inf, -inf, nan, -nan");
}

std::int32_t IntegerOf(const Json& json) {
  if (!IsWhole(json, INT32_MIN, INT32_MAX)) throw StateError("a whole number of 32 bits, signed, is expected");
  return json.get<std::int32_t>();
}

template <class Number, std::size_t kCount>
void MergeList(const Json& list, Number (*number_of)(const Json&), std::array<Number, kCount>* numbers) {
  if (!list.is_array() || list.size() != kCount) {
    throw StateError("a list of " + std::to_string(kCount) + " is expected");
  }
  for (std::size_t i = 0; i < kCount; ++i) (*numbers)[i] = number_of(list[i]);
}

void MergeMember(const std::string& name, const Json& patch, ParameterValues* values) {
  if (name == "integers") return MergeList(patch, IntegerOf, &values->integers);
  if (name == "doubles") return MergeList(patch, DoubleOf, &values->doubles);
  if (name != "edm") throw StateError("unknown member");
  values->edm = IntegerOf(patch);
}

}  // namespace

Json ParametersToJson(const ParameterValues& values) {
  Json doubles = Json::array();
  for (const double value : values.doubles) doubles.push_back(DoubleToJson(value));
  return {{"integers", values.integers}, {"doubles", std::move(doubles)}, {"edm", values.edm}};
}

void MergeParameters(const Json& patch, ParameterValues* values) {
  ForEachMember(patch, [values](const std::string& name, const Json& member) { MergeMember(name, member, values); });
}

}  // namespace host::instrument
