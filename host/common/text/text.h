// Text calls: between the ANSI code page's narrow text and 16-bit text, and upper case without a locale.
#ifndef QXHOST_COMMON_TEXT_TEXT_H
#define QXHOST_COMMON_TEXT_TEXT_H

#include <windows.h>

namespace host {

/// Chooses what code page 0 means: 1252 (at start) or 932. False, and no change, for any other.
bool SetAnsiCodePage(unsigned number);

/// Code pages 0 (see SetAnsiCodePage), 1252 and 932. A negative length means "up to and with the terminating zero";
/// size 0 asks for the size needed. Returns 0 with last error 87 (bad argument or code page), 1004 (flag) or 122 (too
/// small).
int MultiByteToWideChar(UINT code_page, DWORD flags, LPCSTR text, int bytes, LPWSTR wide, int wide_size);
int WideCharToMultiByte(UINT code_page, DWORD flags, LPCWSTR wide, int wide_length, LPSTR text, int text_size,
                        LPCSTR default_char, LPBOOL used_default);

/// Upper-cases in place, one unit for one unit; returns the length.
DWORD CharUpperBuffW(LPWSTR text, DWORD length);

WCHAR UpperCase(WCHAR unit);

}  // namespace host

#endif
