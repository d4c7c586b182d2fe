// COREDLL: text, as the library calls it.
#include "common/text/text.h"

#include <windows.h>

#include "common/calls/coredll_call.h"

using host::Buffer;
using host::CoreDllCall;
using host::kUnlisted;

extern "C" {

int COREDLL(MultiByteToWideChar)(UINT code_page, DWORD flags, LPCSTR text, int bytes, LPWSTR wide, int wide_size) {
  return CoreDllCall("MultiByteToWideChar", kUnlisted, host::MultiByteToWideChar, code_page, flags, text, bytes, wide,
                     wide_size);
}

int COREDLL(WideCharToMultiByte)(UINT code_page, DWORD flags, LPCWSTR wide, int wide_length, LPSTR text, int text_size,
                                 LPCSTR default_char, LPBOOL used_default) {
  return CoreDllCall("WideCharToMultiByte", kUnlisted, host::WideCharToMultiByte, code_page, flags, Buffer(wide),
                     wide_length, text, text_size, default_char, used_default);
}

DWORD COREDLL(CharUpperBuffW)(LPWSTR text, DWORD length) {
  return CoreDllCall("CharUpperBuffW", kUnlisted, host::CharUpperBuffW, text, length);
}

}  // extern "C"
