// The instrument's brand and name, which share one item of the store: brand, comma, name.
#ifndef QXCM_COMMANDS_INSTRUMENT_BRAND_RECORD_H
#define QXCM_COMMANDS_INSTRUMENT_BRAND_RECORD_H

#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/text.h"

namespace qxcm {

/// The item's text in its two parts: what stands before the first comma (all without one), and behind it.
struct BrandRecord {
  WideText brand;
  std::optional<WideText> name;  // nothing when there is no comma
};

BrandRecord ReadBrandRecord();
/// Writes the whole item: what does not fit its 33 characters is cut, what is left is zeros.
void WriteBrandRecord(const BrandRecord& record);

/// The code of a brand by its exact text; nothing for one that is not known.
std::optional<std::uint8_t> BrandCode(std::string_view brand);

}  // namespace qxcm

#endif
