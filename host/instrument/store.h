// The instrument's non-volatile store: items addressed by a 32-bit identifier, which also tells their size.
//
// Bits 8 to 15 are the element type (0, 1, 2: one byte; 3, 4, 8: two; 5, 6: four; 7: eight), bits 0 to 7 the element
// count, bits 16 to 23 the item's number. 0x090821 is item 9, a UTF-16 text of 33 elements.
#ifndef QXHOST_INSTRUMENT_STORE_H
#define QXHOST_INSTRUMENT_STORE_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

#include "instrument/kept.h"
#include "instrument/state.h"

namespace host::instrument {

/// In bytes; 0 when no item can have this identifier.
std::size_t StoreItemSize(std::uint32_t item);

/// By identifier; every item has its full size.
using StoreItems = std::map<std::uint32_t, std::vector<std::uint8_t>>;

/// A write makes an item that is not there, up to so many.
constexpr std::size_t kMostStoreItems = 1024;

/// The items that every instrument has, with what they hold at first.
const StoreItems& StandardStoreItems();

/// The instrument's one store.
Kept<StoreItems>& Store();

/// {"0xA50201": "01"}: the bytes as they stand in the store, in hexadecimal digits.
Json StoreToJson(const StoreItems& items);
/// A null sets an item of every instrument back and removes any other.
void MergeStore(const Json& patch, StoreItems* items);

}  // namespace host::instrument

#endif
