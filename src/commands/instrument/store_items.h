// Items of the instrument's non-volatile store, by identifier: bits 16 to 23 the item's number, 8 to 15 its element
// type, 0 to 7 the count of its elements.
#ifndef QXCM_COMMANDS_INSTRUMENT_STORE_ITEMS_H
#define QXCM_COMMANDS_INSTRUMENT_STORE_ITEMS_H

#include <cstddef>
#include <cstdint>

#include "platform/qxsystem.h"

namespace qxcm {

constexpr std::uint32_t kSerialNumber = 0x020110;       // sixteen 8-bit characters
constexpr std::uint32_t kBrandCode = 0x030201;          // byte
constexpr std::uint32_t kBrandAndName = 0x090821;       // 33 wide characters: brand, comma, name
constexpr std::uint32_t kDistanceMeterType = 0xA40201;  // byte
constexpr std::uint32_t kIdentification = 0xC10401;     // 16 bits
constexpr std::uint32_t kInspectionDate = 0xC20701;     // double

/// Bytes of an item; 0 for an element type that does not exist.
std::size_t StoreItemSize(std::uint32_t item);
/// The item of a parameter number; 0 when the store has none of that number.
std::uint32_t StoreItemOfNumber(std::int32_t number);

/// Reads an item of one value; 0 when the system library fails.
template <class Value>
Value ReadItem(std::uint32_t item) {
  Value value = {};
  QxSystemReadStoreItem(item, &value);
  return value;
}

template <class Value>
void WriteItem(std::uint32_t item, const Value& value) {
  QxSystemWriteStoreItem(item, &value);
}

/// Distance meters of this type count their offset and versions differently.
inline bool IsVnsDistanceMeter() { return ReadItem<std::uint8_t>(kDistanceMeterType) == 1; }

}  // namespace qxcm

#endif
