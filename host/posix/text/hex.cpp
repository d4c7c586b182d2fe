#include "posix/text/hex.h"

namespace host {
namespace {

constexpr char kDigits[] = "0123456789ABCDEF";
constexpr unsigned kNoDigit = 16;

unsigned DigitValue(char digit) {
  if (digit >= '0' && digit <= '9') return static_cast<unsigned>(digit - '0');
  if (digit >= 'a' && digit <= 'f') return static_cast<unsigned>(digit - 'a' + 10);
  return digit >= 'A' && digit <= 'F' ? static_cast<unsigned>(digit - 'A' + 10) : kNoDigit;
}

}  // namespace

std::string HexText(const void* bytes, std::size_t size) {
  std::string text;
  text.reserve(size * 2);
  for (std::size_t i = 0; i < size; ++i) {
    const unsigned byte = static_cast<const std::uint8_t*>(bytes)[i];
    text.push_back(kDigits[byte >> 4]);
    text.push_back(kDigits[byte & 15]);
  }
  return text;
}

std::optional<std::vector<std::uint8_t>> BytesOfHex(std::string_view text) {
  if (text.size() % 2 != 0) return std::nullopt;
  std::vector<std::uint8_t> bytes;
  bytes.reserve(text.size() / 2);
  for (std::size_t i = 0; i < text.size(); i += 2) {
    const unsigned high = DigitValue(text[i]);
    const unsigned low = DigitValue(text[i + 1]);
    if (high == kNoDigit || low == kNoDigit) return std::nullopt;
    bytes.push_back(static_cast<std::uint8_t>(high << 4 | low));
  }
  return bytes;
}

}  // namespace host
