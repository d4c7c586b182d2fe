#include "qxsim/line_text.h"

#include <cmath>

#include "posix/text/code_pages.h"
#include "posix/text/utf.h"

namespace qxsim {
namespace {

constexpr char kDigits[] = "0123456789ABCDEF";

void AppendHex(unsigned char byte, std::string* text) {
  *text += kDigits[byte >> 4];
  *text += kDigits[byte & 15];
}

bool IsControl(char byte) { return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F; }

}  // namespace

std::string ReadableText(std::string_view bytes) {
  const host::CodePage* page = host::FindCodePage(0);
  std::string text;
  while (!bytes.empty()) {
    if (IsControl(bytes.front())) {
      text += "\\x";
      AppendHex(static_cast<unsigned char>(bytes.front()), &text);
      bytes.remove_prefix(1);
    } else {
      char16_t wide = 0;
      bytes.remove_prefix(page->Decode(bytes, &wide));
      text += host::WideToUtf8({&wide, 1});
    }
  }
  return text;
}

std::string HexOf(std::string_view bytes) {
  std::string text;
  for (const char byte : bytes) AppendHex(static_cast<unsigned char>(byte), &text);
  return text;
}

double ShownTime(double milliseconds) { return std::round(milliseconds * 1000) / 1000; }

}  // namespace qxsim
