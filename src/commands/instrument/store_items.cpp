#include "commands/instrument/store_items.h"

#include <algorithm>
#include <iterator>

namespace qxcm {

namespace {

constexpr std::uint32_t kItems[] = {
    0x020110, 0x030201, 0x090821, 0x400201, 0x800104, 0x810501, 0x820501, 0x830501, 0x840501, 0x850501,
    0x860208, 0xA00201, 0xA10201, 0xA20201, 0xA30201, 0xA40201, 0xA50201, 0xA60201, 0xA70201, 0xA80201,
    0xA90201, 0xAA0201, 0xAB0201, 0xAC0201, 0xAD0201, 0xAE0201, 0xAF0201, 0xC00201, 0xC10401, 0xC20701,
    0xE00501, 0xE10501, 0xE20501, 0xE30501, 0xE40501, 0xE50501, 0xE60701, 0xE70501,
};
static_assert(std::size(kItems) == 38, "every item has its parameter number");

constexpr std::size_t kWidths[] = {1, 1, 1, 2, 2, 4, 4, 8, 2};  // bytes, by element type

}  // namespace

std::size_t StoreItemSize(std::uint32_t item) {
  const std::uint32_t type = item >> 8 & 0xFF;
  return type < std::size(kWidths) ? (item & 0xFF) * kWidths[type] : 0;
}

std::uint32_t StoreItemOfNumber(std::int32_t number) {
  const auto* item = std::find_if(std::begin(kItems), std::end(kItems),
                                  [number](std::uint32_t i) { return static_cast<std::int32_t>(i >> 16) == number; });
  return item == std::end(kItems) ? 0 : *item;
}

}  // namespace qxcm
