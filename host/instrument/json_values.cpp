#include "instrument/json_values.h"

#include <nlohmann/json.hpp>

#include "common/text/hex.h"

namespace host::instrument {

bool IsWhole(const Json& value, std::int64_t lowest, std::int64_t highest) {
  if (!value.is_number_integer()) return false;
  if (value.is_number_unsigned() && value.get<std::uint64_t>() > static_cast<std::uint64_t>(INT64_MAX)) return false;
  return value.get<std::int64_t>() >= lowest && value.get<std::int64_t>() <= highest;
}

std::vector<std::uint8_t> BytesOf(const Json& value) {
  if (!value.is_string()) throw StateError("a text of hexadecimal digits is expected");
  auto bytes = BytesOfHex(value.get_ref<const std::string&>());
  if (!bytes) throw StateError("an even number of hexadecimal digits is expected");
  return *std::move(bytes);
}

void ForEachMember(const Json& patch, const std::function<void(const std::string&, const Json&)>& merge) {
  if (!patch.is_object()) throw StateError("an object is expected");
  for (const auto& member : patch.items()) {
    try {
      merge(member.key(), member.value());
    } catch (const StateError& error) {
      throw StateError("\"" + member.key() + "\": " + error.what());
    }
  }
}

}  // namespace host::instrument
