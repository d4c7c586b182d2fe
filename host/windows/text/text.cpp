#include "common/text/text.h"

#include <atomic>

#include "common/calls/errors.h"

namespace host {
namespace {

constexpr UINT kWestern = 1252;
constexpr UINT kJapanese = 932;

std::atomic<UINT> ansi_code_page{kWestern};

/// The code page as the system numbers it: not the machine's own ANSI code page for 0. Nothing (0) for others.
UINT SystemCodePage(UINT number) {
  if (number == CP_ACP) return ansi_code_page;
  return number == kWestern || number == kJapanese ? number : 0;
}

}  // namespace

bool SetAnsiCodePage(unsigned number) {
  if (number == CP_ACP || SystemCodePage(number) == 0 || !::IsValidCodePage(number)) return false;
  ansi_code_page = number;
  return true;
}

int MultiByteToWideChar(UINT code_page, DWORD flags, LPCSTR text, int bytes, LPWSTR wide, int wide_size) {
  const UINT page = SystemCodePage(code_page);
  if (page == 0) return Fail(ERROR_INVALID_PARAMETER, 0);
  return ::MultiByteToWideChar(page, flags, text, bytes, wide, wide_size);
}

int WideCharToMultiByte(UINT code_page, DWORD flags, LPCWSTR wide, int wide_length, LPSTR text, int text_size,
                        LPCSTR default_char, LPBOOL used_default) {
  const UINT page = SystemCodePage(code_page);
  if (page == 0) return Fail(ERROR_INVALID_PARAMETER, 0);
  return ::WideCharToMultiByte(page, flags, wide, wide_length, text, text_size, default_char, used_default);
}

DWORD CharUpperBuffW(LPWSTR text, DWORD length) { return text == nullptr ? 0 : ::CharUpperBuffW(text, length); }

WCHAR UpperCase(WCHAR unit) {
  ::CharUpperBuffW(&unit, 1);
  return unit;
}

}  // namespace host
