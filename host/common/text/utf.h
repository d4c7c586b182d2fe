// UTF-8 and the platform's 16-bit text, for names, logs and files of this machine.
#ifndef QXHOST_COMMON_TEXT_UTF_H
#define QXHOST_COMMON_TEXT_UTF_H

#include <windows.h>

#include <string>
#include <string_view>

namespace host {

/// The platform's text: 16-bit units.
using WideString = std::basic_string<WCHAR>;
using WideView = std::basic_string_view<WCHAR>;

/// Whether every surrogate is one of a pair.
bool IsWellFormed(WideView wide);

/// Unpaired surrogates become U+FFFD.
std::string WideToUtf8(WideView wide);

/// Malformed sequences become one U+FFFD for each of their bytes.
WideString Utf8ToWide(std::string_view text);

}  // namespace host

#endif
