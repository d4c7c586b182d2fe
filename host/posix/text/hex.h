// Bytes as hexadecimal text, two digits each.
#ifndef QXHOST_POSIX_TEXT_HEX_H
#define QXHOST_POSIX_TEXT_HEX_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// In upper-case digits.
std::string HexText(const void* bytes, std::size_t size);

/// Digits of either case; nothing when the text is not just pairs of digits.
std::optional<std::vector<std::uint8_t>> BytesOfHex(std::string_view text);

}  // namespace host

#endif
