// COREDLL: version resources, as the library calls them.
#include <windows.h>

#include "posix/calls/coredll_call.h"
#include "posix/version/version.h"

using host::CoreDllCall;
using host::kUnlisted;

extern "C" {

DWORD GetFileVersionInfoSizeW(LPCWSTR file, LPDWORD unused) {
  return CoreDllCall("GetFileVersionInfoSizeW", kUnlisted, host::GetFileVersionInfoSizeW, file, unused);
}

BOOL GetFileVersionInfoW(LPCWSTR file, DWORD unused, DWORD size, LPVOID resource) {
  return CoreDllCall("GetFileVersionInfoW", kUnlisted, host::GetFileVersionInfoW, file, unused, size, resource);
}

BOOL VerQueryValueW(LPCVOID resource, LPCWSTR name, LPVOID* value, UINT* size) {
  return CoreDllCall("VerQueryValueW", kUnlisted, host::VerQueryValueW, resource, name, value, size);
}

}  // extern "C"
