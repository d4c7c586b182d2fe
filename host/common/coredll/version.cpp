// COREDLL: version resources, as the library calls them.
#include "common/version/version.h"

#include <windows.h>

#include "common/calls/coredll_call.h"

using host::CoreDllCall;
using host::kUnlisted;

extern "C" {

DWORD COREDLL(GetFileVersionInfoSizeW)(LPCWSTR file, LPDWORD unused) {
  return CoreDllCall("GetFileVersionInfoSizeW", kUnlisted, host::GetFileVersionInfoSizeW, file, unused);
}

BOOL COREDLL(GetFileVersionInfoW)(LPCWSTR file, DWORD unused, DWORD size, LPVOID resource) {
  return CoreDllCall("GetFileVersionInfoW", kUnlisted, host::GetFileVersionInfoW, file, unused, size, resource);
}

BOOL COREDLL(VerQueryValueW)(LPCVOID resource, LPCWSTR name, LPVOID* value, UINT* size) {
  return CoreDllCall("VerQueryValueW", kUnlisted, host::VerQueryValueW, resource, name, value, size);
}

}  // extern "C"
