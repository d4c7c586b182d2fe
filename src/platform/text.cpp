// Conversions through the ANSI code page.
#include "platform/text.h"

#include <stdexcept>

namespace qxcm {

namespace {

template <class Text>
Text UpToZero(Text text) {
  return text.substr(0, text.find(typename Text::value_type()));
}

}  // namespace

WideText WidenText(std::string_view narrow) {
  narrow = UpToZero(narrow);
  WideText wide(narrow.size(), WCHAR());  // no code page makes more characters than bytes
  if (narrow.empty()) return wide;
  const int length = MultiByteToWideChar(CP_ACP, MB_PRECOMPOSED, narrow.data(), static_cast<int>(narrow.size()),
                                         wide.data(), static_cast<int>(wide.size()));
  if (length <= 0) throw std::runtime_error("Text conversion failed.");
  wide.resize(static_cast<std::size_t>(length));
  return wide;
}

std::string NarrowText(std::basic_string_view<WCHAR> wide) {
  constexpr std::size_t kBytesPerCharacter = 4;  // the most that any code page takes
  wide = UpToZero(wide);
  std::string narrow(wide.size() * kBytesPerCharacter, '\0');
  if (wide.empty()) return narrow;
  const int length = WideCharToMultiByte(CP_ACP, WC_COMPOSITECHECK, wide.data(), static_cast<int>(wide.size()),
                                         narrow.data(), static_cast<int>(narrow.size()), nullptr, nullptr);
  if (length <= 0) throw std::runtime_error("Text conversion failed.");
  narrow.resize(static_cast<std::size_t>(length));
  return narrow;
}

}  // namespace qxcm
