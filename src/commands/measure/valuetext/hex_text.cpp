// Hexadecimal text.
#include "commands/measure/valuetext/hex_text.h"

namespace qxcm {

namespace {

constexpr char kHexDigits[] = "0123456789ABCDEF";
constexpr int kNoDigit = -1;

int DigitValue(char digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
  if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
  return kNoDigit;
}

}  // namespace

void BytesToHex(const std::uint8_t* bytes, std::size_t count, std::string* text) {
  text->reserve(text->size() + 2 * count);
  for (std::size_t i = 0; i < count; ++i) {
    text->push_back(kHexDigits[bytes[i] >> 4]);
    text->push_back(kHexDigits[bytes[i] & 0x0F]);
  }
}

bool HexToBytes(std::string_view text, std::vector<std::uint8_t>* bytes) {
  if (text.size() % 2 != 0) return false;
  bytes->reserve(bytes->size() + text.size() / 2);
  for (std::size_t i = 0; i < text.size(); i += 2) {
    const int high = DigitValue(text[i]);
    const int low = DigitValue(text[i + 1]);
    if (high == kNoDigit || low == kNoDigit) return false;
    bytes->push_back(static_cast<std::uint8_t>(high << 4 | low));
  }
  return true;
}

}  // namespace qxcm
