#include "instrument/registry_value_json.h"

#include <cstring>
#include <nlohmann/json.hpp>
#include <optional>

#include "common/text/hex.h"
#include "common/text/utf.h"
#include "instrument/json_values.h"

namespace host::instrument {
namespace {

std::vector<BYTE> BytesOfValue(const Json& json) {
  try {
    return BytesOf(json);
  } catch (const StateError& error) {
    throw StateError(std::string("value: ") + error.what());
  }
}

/// The text of a value that holds exactly one, zero-terminated and well-formed.
std::optional<std::string> TextOf(const std::vector<BYTE>& bytes) {
  WideString units(bytes.size() / sizeof(WCHAR), TEXT('\0'));
  if (units.empty() || bytes.size() % sizeof(WCHAR) != 0) return std::nullopt;
  std::memcpy(units.data(), bytes.data(), bytes.size());
  if (units.find(TEXT('\0')) != units.size() - 1) return std::nullopt;
  units.pop_back();
  std::string text = WideToUtf8(units);
  if (Utf8ToWide(text) != units) return std::nullopt;  // an unpaired surrogate
  return text;
}

std::vector<BYTE> BytesOfText(const Json& json) {
  if (!json.is_string()) throw StateError("value: a text is expected");
  const WideString units = Utf8ToWide(json.get_ref<const std::string&>());
  if (units.find(TEXT('\0')) != WideString::npos) throw StateError("value: a text without zeros is expected");
  std::vector<BYTE> bytes((units.size() + 1) * sizeof(WCHAR));
  std::memcpy(bytes.data(), units.data(), units.size() * sizeof(WCHAR));
  return bytes;
}

std::vector<BYTE> BytesOfInteger(const Json& json) {
  if (!IsWhole(json, INT32_MIN, INT32_MAX)) throw StateError("value: a whole number of 32 bits, signed, is expected");
  const auto number = json.get<std::int32_t>();
  std::vector<BYTE> bytes(sizeof number);
  std::memcpy(bytes.data(), &number, sizeof number);
  return bytes;
}

}  // namespace

Json RegistryValueToJson(const RegistryValue& value) {
  if (value.type == REG_BINARY) return {{"type", "BIN"}, {"value", HexOf(value.data)}};
  if (value.type == REG_DWORD && value.data.size() == sizeof(std::int32_t)) {
    std::int32_t number;
    std::memcpy(&number, value.data.data(), sizeof number);
    return {{"type", "INT"}, {"value", number}};
  }
  if (const auto text = value.type == REG_SZ ? TextOf(value.data) : std::nullopt) {
    return {{"type", "STR"}, {"value", *text}};
  }
  return {{"type", value.type}, {"value", HexOf(value.data)}};
}

RegistryValue RegistryValueFromJson(const Json& json) {
  const bool shaped = json.is_object() && json.size() == 2 && json.contains("type") && json.contains("value");
  if (!shaped) throw StateError("an object of type and value is expected");
  const Json& type = json["type"];
  const Json& value = json["value"];
  if (type == "INT") return {{}, REG_DWORD, BytesOfInteger(value)};
  if (type == "STR") return {{}, REG_SZ, BytesOfText(value)};
  if (type == "BIN") return {{}, REG_BINARY, BytesOfValue(value)};
  if (!IsWhole(type, 0, UINT32_MAX)) throw StateError("type: INT, STR, BIN or a type's number is expected");
  return {{}, type.get<DWORD>(), BytesOfValue(value)};
}

}  // namespace host::instrument
