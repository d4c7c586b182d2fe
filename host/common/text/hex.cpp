#include "common/text/hex.h"

namespace host {

std::string HexOf(const void* bytes, std::size_t size) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  const auto* next = static_cast<const std::uint8_t*>(bytes);
  std::string text;
  text.reserve(size * 2);
  for (std::size_t i = 0; i < size; ++i) {
    text.push_back(kDigits[next[i] >> 4]);
    text.push_back(kDigits[next[i] & 15]);
  }
  return text;
}

int HexDigitValue(char digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  const int upper = digit & ~0x20;
  return upper >= 'A' && upper <= 'F' ? upper - 'A' + 10 : -1;
}

std::optional<std::vector<std::uint8_t>> BytesOfHex(std::string_view text) {
  if (text.size() % 2 != 0) return std::nullopt;
  std::vector<std::uint8_t> bytes;
  bytes.reserve(text.size() / 2);
  for (std::size_t i = 0; i < text.size(); i += 2) {
    const int high = HexDigitValue(text[i]), low = HexDigitValue(text[i + 1]);
    if (high < 0 || low < 0) return std::nullopt;
    bytes.push_back(static_cast<std::uint8_t>(high << 4 | low));
  }
  return bytes;
}

}  // namespace host
