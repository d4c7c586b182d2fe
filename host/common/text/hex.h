// Bytes as hexadecimal text, two digits each: upper-case when written, either case when read.
#ifndef QXHOST_COMMON_TEXT_HEX_H
#define QXHOST_COMMON_TEXT_HEX_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

std::string HexOf(const void* bytes, std::size_t size);
inline std::string HexOf(const std::vector<std::uint8_t>& bytes) { return HexOf(bytes.data(), bytes.size()); }

/// The digit's value, or -1.
int HexDigitValue(char digit);

/// Nothing for an odd number of digits and for anything that is no digit.
std::optional<std::vector<std::uint8_t>> BytesOfHex(std::string_view text);

}  // namespace host

#endif
