// The simulated store: ordinals 61 and 62. Reading an item that is not there fails; writing makes it.
#include "instrument/store.h"

#include <cerrno>
#include <cstring>
#include <optional>

#include "common/text/hex.h"
#include "instrument/system_calls.h"

namespace host::instrument {
namespace {

constexpr std::size_t kWidths[] = {1, 1, 1, 2, 2, 4, 4, 8, 2};  // by element type

constexpr std::uint32_t kNames = 0x090821;
constexpr WCHAR kStandardNames[] = TEXT("Korax,DX-1");  // brand, comma, name
constexpr std::uint32_t kSerialNumber = 0x020110;
constexpr char kStandardSerialNumber[] = "000000";
constexpr std::uint32_t kInspection = 0xC20701;
constexpr double kStandardInspection = 45322.0;  // 31 January 2024, in days since 30 December 1899

constexpr std::uint32_t kStandardItems[] = {
    0x020110, 0x030201, 0x090821, 0x400201, 0x800104, 0x810501, 0x820501, 0x830501, 0x840501, 0x850501,
    0x860208, 0xA00201, 0xA10201, 0xA20201, 0xA30201, 0xA40201, 0xA50201, 0xA60201, 0xA70201, 0xA80201,
    0xA90201, 0xAA0201, 0xAB0201, 0xAC0201, 0xAD0201, 0xAE0201, 0xAF0201, 0xC00201, 0xC10401, 0xC20701,
    0xE00501, 0xE10501, 0xE20501, 0xE30501, 0xE40501, 0xE50501, 0xE60701, 0xE70501};

StoreItems MakeStandardItems() {
  StoreItems items;
  for (const std::uint32_t item : kStandardItems) items[item].resize(StoreItemSize(item));
  std::memcpy(items[kNames].data(), kStandardNames, sizeof kStandardNames);
  std::memcpy(items[kSerialNumber].data(), kStandardSerialNumber, sizeof kStandardSerialNumber);
  std::memcpy(items[kInspection].data(), &kStandardInspection, sizeof kStandardInspection);
  return items;
}

std::optional<std::vector<std::uint8_t>> Read(std::uint32_t item) {
  return Store().See([item](const StoreItems& items) {
    const auto found = items.find(item);
    return found == items.end() ? std::nullopt : std::optional(found->second);
  });
}

bool Write(std::uint32_t item, const void* value) {
  const auto* bytes = static_cast<const std::uint8_t*>(value);
  const std::size_t size = StoreItemSize(item);
  if (size == 0 || value == nullptr) return false;
  const int error = Store().Change([=](StoreItems& items) {
    items[item].assign(bytes, bytes + size);
    return items.size() > kMostStoreItems ? ENOSPC : 0;
  });
  return error == 0;
}

/// The identifier and, as far as there are any, the bytes to be written.
CallValues WriteArguments(std::uint32_t item, const void* value) {
  CallValues values = {std::int64_t{item}};
  if (value == nullptr) {
    values.emplace_back(nullptr);
  } else if (const std::size_t size = StoreItemSize(item)) {
    values.emplace_back(HexOf(value, size));
  }
  return values;
}

CallValues ReadArguments(std::uint32_t item, const void* value) {
  CallValues values = {std::int64_t{item}};
  if (value == nullptr) values.emplace_back(nullptr);
  return values;
}

Answer<std::int32_t> ReadInto(std::uint32_t item, void* value) {
  const auto bytes = Read(item);
  if (!bytes || value == nullptr) return {-1, {}};
  std::memcpy(value, bytes->data(), bytes->size());
  return {0, {HexOf(*bytes)}};
}

}  // namespace

std::size_t StoreItemSize(std::uint32_t item) {
  const std::size_t type = item >> 8 & 0xFF;
  return type < std::size(kWidths) ? kWidths[type] * (item & 0xFF) : 0;
}

const StoreItems& StandardStoreItems() {
  static const auto* items = new StoreItems(MakeStandardItems());
  return *items;
}

Kept<StoreItems>& Store() {
  static auto* store = new Kept<StoreItems>(StandardStoreItems());  // calls may still come while the process ends
  return *store;
}

}  // namespace host::instrument

using namespace host::instrument;

std::int32_t WINAPI QxSystemReadStoreItem(std::uint32_t item, void* value) {
  const auto args = [&] { return ReadArguments(item, value); };
  return host::Entry(
             "QxSystem", 61, true, args, [&] { return ReadInto(item, value); }, host::FailsWith::kMinusOne)
      .result;
}

std::int32_t WINAPI QxSystemWriteStoreItem(std::uint32_t item, const void* value) {
  const auto args = [&] { return WriteArguments(item, value); };
  const auto real = [&]() -> std::int32_t { return Write(item, value) ? 0 : -1; };
  return host::Entry("QxSystem", 62, true, args, real, host::FailsWith::kMinusOne);
}
