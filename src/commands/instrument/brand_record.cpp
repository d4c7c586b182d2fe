#include "commands/instrument/brand_record.h"

#include <algorithm>
#include <iterator>

#include "commands/instrument/store_items.h"

namespace qxcm {

namespace {

constexpr std::size_t kLength = 33;                                                                      // of the item
constexpr std::string_view kBrands[] = {"Korax", "Halvern", "VQ", "Halvern MV", "Halvern KP", "Ostra"};  // by code
constexpr WCHAR kComma = ',';

}  // namespace

BrandRecord ReadBrandRecord() {
  WCHAR item[kLength + 1] = {};  // and a zero, should the item have none
  QxSystemReadStoreItem(kBrandAndName, item);
  item[kLength] = 0;
  const WideText text = item;
  const std::size_t comma = text.find(kComma);
  if (comma == WideText::npos) return {text, std::nullopt};
  return {text.substr(0, comma), text.substr(comma + 1)};
}

void WriteBrandRecord(const BrandRecord& record) {
  WideText text = record.brand;
  if (record.name) text += kComma + *record.name;
  text.resize(kLength);
  QxSystemWriteStoreItem(kBrandAndName, text.data());
}

std::optional<std::uint8_t> BrandCode(std::string_view brand) {
  const auto* found = std::find(std::begin(kBrands), std::end(kBrands), brand);
  if (found == std::end(kBrands)) return std::nullopt;
  return static_cast<std::uint8_t>(found - std::begin(kBrands));
}

}  // namespace qxcm
