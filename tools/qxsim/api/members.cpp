#include "qxsim/api/members.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace qxsim {
namespace {

[[noreturn]] void Refuse(const char* name, const std::string& expected) {
  throw ApiError(kBadRequest, std::string(name) + ": " + expected + " is expected");
}

}  // namespace

Members::Members(const Json& object, std::vector<std::string_view> known) : object_(object) {
  if (!object.is_object()) throw ApiError(kBadRequest, "a JSON object is expected");
  for (const auto& member : object.items()) {
    if (std::find(known.begin(), known.end(), member.key()) == known.end()) {
      throw ApiError(kBadRequest, "unknown member: " + member.key());
    }
  }
}

const Json* Members::Find(const char* name) const {
  const auto found = object_.find(name);
  return found == object_.end() ? nullptr : &*found;
}

bool Members::Has(const char* name) const { return Find(name) != nullptr; }

bool Members::IsNull(const char* name) const {
  const Json* member = Find(name);
  return member != nullptr && member->is_null();
}

std::optional<bool> Members::Bool(const char* name) const {
  const Json* member = Find(name);
  if (member == nullptr) return std::nullopt;
  if (!member->is_boolean()) Refuse(name, "true or false");
  return member->get<bool>();
}

std::optional<std::int64_t> Members::Integer(const char* name, std::int64_t lowest, std::int64_t highest) const {
  const Json* member = Find(name);
  if (member == nullptr) return std::nullopt;
  const bool fits =
      member->is_number_integer() &&
      (!member->is_number_unsigned() || member->get<std::uint64_t>() <= static_cast<std::uint64_t>(INT64_MAX));
  if (!fits || member->get<std::int64_t>() < lowest || member->get<std::int64_t>() > highest) {
    Refuse(name, "a whole number from " + std::to_string(lowest) + " to " + std::to_string(highest));
  }
  return member->get<std::int64_t>();
}

std::optional<double> Members::Number(const char* name) const {
  const Json* member = Find(name);
  if (member == nullptr) return std::nullopt;
  if (!member->is_number()) Refuse(name, "a number");
  return member->get<double>();
}

std::optional<std::string> Members::Text(const char* name) const {
  const Json* member = Find(name);
  if (member == nullptr) return std::nullopt;
  if (!member->is_string()) Refuse(name, "a text");
  return member->get<std::string>();
}

}  // namespace qxsim
