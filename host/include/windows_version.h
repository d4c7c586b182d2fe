// Part of <windows.h>: version resources of program and library files.
#ifndef QXHOST_WINDOWS_VERSION_H
#define QXHOST_WINDOWS_VERSION_H

#ifdef __cplusplus
extern "C" {
#endif

DWORD WINAPI GetFileVersionInfoSizeW(LPCWSTR file, LPDWORD unused);
BOOL WINAPI GetFileVersionInfoW(LPCWSTR file, DWORD unused, DWORD size, LPVOID resource);
BOOL WINAPI VerQueryValueW(LPCVOID resource, LPCWSTR name, LPVOID* value, UINT* size);

#ifdef __cplusplus
}
#endif

#endif
