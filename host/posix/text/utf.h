// UTF-8 and the platform's 16-bit text, for names, logs and files of this machine.
#ifndef QXHOST_POSIX_TEXT_UTF_H
#define QXHOST_POSIX_TEXT_UTF_H

#include <string>
#include <string_view>

namespace host {

/// Unpaired surrogates become U+FFFD.
std::string WideToUtf8(std::u16string_view wide);

/// Malformed sequences become one U+FFFD for each of their bytes.
std::u16string Utf8ToWide(std::string_view text);

}  // namespace host

#endif
