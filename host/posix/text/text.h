// Text calls: between the ANSI code page's narrow text and 16-bit text, and upper case without a locale.
#ifndef QXHOST_POSIX_TEXT_TEXT_H
#define QXHOST_POSIX_TEXT_TEXT_H

#include <windows.h>

namespace host {

/// Code pages 0 (see SetAnsiCodePage), 1252 and 932. A negative length means "up to and with the terminating zero";
/// size 0 asks for the size needed. Returns 0 with last error 87 (bad argument or code page), 1004 (flag) or 122 (too
/// small).
int MultiByteToWideChar(UINT code_page, DWORD flags, LPCSTR text, int bytes, LPWSTR wide, int wide_size);
int WideCharToMultiByte(UINT code_page, DWORD flags, LPCWSTR wide, int wide_length, LPSTR text, int text_size,
                        LPCSTR default_char, LPBOOL used_default);

/// Upper-cases in place, one unit for one unit; returns the length.
DWORD CharUpperBuffW(LPWSTR text, DWORD length);

char16_t UpperCase(char16_t unit);

/// The one character for a letter and the combining mark behind it, 0 when there is none in the supported code pages.
char16_t Compose(char16_t letter, char16_t mark);

}  // namespace host

#endif
