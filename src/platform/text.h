// Wide text: 16 bits a character on every host; and the way between it and the narrow text of the wire.
#ifndef QXCM_PLATFORM_TEXT_H
#define QXCM_PLATFORM_TEXT_H

#include <string>
#include <string_view>

#include "platform/windows_api.h"

namespace qxcm {

using WideText = std::basic_string<WCHAR>;

/// Every character to upper case, as the platform does it.
inline WideText UpperCase(WideText text) {
  CharUpperBuffW(text.data(), static_cast<DWORD>(text.size()));
  return text;
}

/// Narrow text of the ANSI code page, up to its first zero, as wide text. Throws std::runtime_error when the platform
/// refuses the conversion.
WideText WidenText(std::string_view narrow);

/// Wide text up to its first zero as narrow text of the ANSI code page; what does not fit the code page is replaced as
/// the platform does it. Throws std::runtime_error when the platform refuses the conversion.
std::string NarrowText(std::basic_string_view<WCHAR> wide);

}  // namespace qxcm

#endif
