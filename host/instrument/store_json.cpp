// The store in the state document.
#include <cstdio>
#include <nlohmann/json.hpp>
#include <optional>

#include "common/text/hex.h"
#include "instrument/json_values.h"
#include "instrument/store.h"

namespace host::instrument {
namespace {

constexpr std::size_t kMostDigits = 8;

std::string IdentifierText(std::uint32_t item) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%06X", static_cast<unsigned>(item));
  return text;
}

/// Any number of leading zeros that 8 digits leave room for.
std::optional<std::uint32_t> IdentifierOf(const std::string& text) {
  if (text.size() < 3 || text.size() > 2 + kMostDigits || text.compare(0, 2, "0x") != 0) return std::nullopt;
  std::uint32_t item = 0;
  for (const char letter : text.substr(2)) {
    const int digit = HexDigitValue(letter);
    if (digit < 0) return std::nullopt;
    item = item << 4 | static_cast<std::uint32_t>(digit);
  }
  return item;
}

void RemoveItem(std::uint32_t item, StoreItems* items) {
  const auto standard = StandardStoreItems().find(item);
  if (standard == StandardStoreItems().end()) {
    items->erase(item);
  } else {
    (*items)[item] = standard->second;
  }
}

void MergeItem(const std::string& name, const Json& patch, StoreItems* items) {
  const auto item = IdentifierOf(name);
  const std::size_t size = item ? StoreItemSize(*item) : 0;
  if (size == 0) throw StateError("no identifier of an item, such as 0x090821");
  if (patch.is_null()) return RemoveItem(*item, items);
  auto bytes = BytesOf(patch);
  if (bytes.size() != size) throw StateError(std::to_string(size) + " bytes are expected");
  (*items)[*item] = std::move(bytes);
}

}  // namespace

Json StoreToJson(const StoreItems& items) {
  Json json = Json::object();
  for (const auto& item : items) json[IdentifierText(item.first)] = HexOf(item.second);
  return json;
}

void MergeStore(const Json& patch, StoreItems* items) {
  ForEachMember(patch, [items](const std::string& name, const Json& member) { MergeItem(name, member, items); });
  if (items->size() > kMostStoreItems) throw StateError("too many items");
}

}  // namespace host::instrument
