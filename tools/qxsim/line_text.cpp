#include "qxsim/line_text.h"

#include <algorithm>
#include <cmath>

#include "common/text/text.h"
#include "common/text/utf.h"

namespace qxsim {
namespace {

constexpr char kDigits[] = "0123456789ABCDEF";

void AppendHex(unsigned char byte, std::string* text) {
  *text += kDigits[byte >> 4];
  *text += kDigits[byte & 15];
}

bool IsControl(char byte) { return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F; }

std::string Utf8OfAnsi(std::string_view text) {
  host::WideString wide(text.size(), 0);  // never more units than bytes
  const int size = static_cast<int>(text.size());
  wide.resize(static_cast<std::size_t>(host::MultiByteToWideChar(CP_ACP, 0, text.data(), size, wide.data(), size)));
  return host::WideToUtf8(wide);
}

}  // namespace

std::string ReadableText(std::string_view bytes) {
  std::string text;
  while (!bytes.empty()) {
    const auto end = std::find_if(bytes.begin(), bytes.end(), IsControl);
    const auto readable = static_cast<std::size_t>(end - bytes.begin());
    text += Utf8OfAnsi(bytes.substr(0, readable));
    bytes.remove_prefix(readable);
    if (bytes.empty()) break;
    text += "\\x";
    AppendHex(static_cast<unsigned char>(bytes.front()), &text);
    bytes.remove_prefix(1);
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
