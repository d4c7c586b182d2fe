#include "common/text/utf.h"

#include <cstddef>
#include <cstdint>

namespace host {
namespace {

constexpr std::uint32_t kReplacement = 0xFFFD;

bool IsHigh(std::uint32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool IsLow(std::uint32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

void AppendUtf8(std::uint32_t code, std::string* text) {
  const auto tail = [&](int shift) { text->push_back(static_cast<char>(0x80 | ((code >> shift) & 0x3F))); };
  if (code < 0x80) {
    text->push_back(static_cast<char>(code));
  } else if (code < 0x800) {
    text->push_back(static_cast<char>(0xC0 | (code >> 6)));
    tail(0);
  } else if (code < 0x10000) {
    text->push_back(static_cast<char>(0xE0 | (code >> 12)));
    tail(6), tail(0);
  } else {
    text->push_back(static_cast<char>(0xF0 | (code >> 18)));
    tail(12), tail(6), tail(0);
  }
}

// How many bytes a sequence with this first byte has; 0 when none starts with it.
std::size_t SequenceLength(unsigned char first) {
  if (first < 0x80) return 1;
  if (first < 0xC2) return 0;
  if (first < 0xE0) return 2;
  if (first < 0xF0) return 3;
  return first < 0xF5 ? 4 : 0;
}

// Decodes the sequence at the start of `text`, of `length` bytes; kReplacement when it is malformed.
std::uint32_t DecodeSequence(std::string_view text, std::size_t length) {
  constexpr std::uint32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  if (length == 0 || text.size() < length) return kReplacement;
  std::uint32_t code = static_cast<unsigned char>(text[0]);
  if (length > 1) code &= 0x7Fu >> length;
  for (std::size_t i = 1; i < length; ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if ((byte & 0xC0) != 0x80) return kReplacement;
    code = code << 6 | (byte & 0x3F);
  }
  const bool surrogate = IsHigh(code) || IsLow(code);
  return code < kSmallest[length] || code > 0x10FFFF || surrogate ? kReplacement : code;
}

}  // namespace

bool IsWellFormed(WideView wide) {
  for (std::size_t i = 0; i < wide.size(); ++i) {
    if (IsLow(wide[i])) return false;
    if (!IsHigh(wide[i])) continue;
    if (++i == wide.size() || !IsLow(wide[i])) return false;
  }
  return true;
}

std::string WideToUtf8(WideView wide) {
  std::string text;
  text.reserve(wide.size());
  for (std::size_t i = 0; i < wide.size(); ++i) {
    std::uint32_t code = wide[i];
    if (IsHigh(code) && i + 1 < wide.size() && IsLow(wide[i + 1])) {
      code = 0x10000 + ((code - 0xD800) << 10) + (wide[++i] - 0xDC00u);
    }
    AppendUtf8(IsHigh(code) || IsLow(code) ? kReplacement : code, &text);
  }
  return text;
}

WideString Utf8ToWide(std::string_view text) {
  WideString wide;
  wide.reserve(text.size());
  while (!text.empty()) {
    const std::size_t length = SequenceLength(static_cast<unsigned char>(text[0]));
    const std::uint32_t code = DecodeSequence(text, length);
    // A real U+FFFD is three bytes long; a malformed sequence is left byte by byte.
    const bool malformed = code == kReplacement && text.substr(0, 3) != "\xEF\xBF\xBD";
    text.remove_prefix(malformed ? 1 : length);
    if (code < 0x10000) {
      wide.push_back(static_cast<WCHAR>(code));
    } else {
      wide.push_back(static_cast<WCHAR>(0xD800 + ((code - 0x10000) >> 10)));
      wide.push_back(static_cast<WCHAR>(0xDC00 + ((code - 0x10000) & 0x3FF)));
    }
  }
  return wide;
}

}  // namespace host
