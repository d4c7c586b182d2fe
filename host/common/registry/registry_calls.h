// The registry's calls, behind the names the library calls. All return error codes and leave the last error alone.
//
// A path's names are parted by "\"; it must not begin with one (161). A name that is too long or malformed, and a path
// that is too deep, are 87. A handle that is no key's is 6, that of a key deleted meanwhile 1018. What a change may
// meet besides: 14 (the registry is full), 112 (the disk is), 1016 (it cannot be kept).
#ifndef QXHOST_COMMON_REGISTRY_REGISTRY_CALLS_H
#define QXHOST_COMMON_REGISTRY_REGISTRY_CALLS_H

#include <windows.h>

#include <string>

namespace host {

/// The key a call works on, as RegistryPathText writes it; empty when the handle is no key's or the path no good one.
std::string RegistrySubject(HKEY key, LPCWSTR path);

/// A null or empty path opens the key itself once more. Access rights are not looked at. 2: no such key.
LONG RegOpenKeyExW(HKEY key, LPCWSTR path, DWORD options, DWORD access, PHKEY opened);
/// Makes the key, and those on the way to it, where they are missing. Class, options, access and security are not
/// looked at, as on the platform; a class cannot be asked for either.
LONG RegCreateKeyExW(HKEY key, LPCWSTR path, DWORD reserved, LPCWSTR key_class, DWORD options, DWORD access,
                     LPSECURITY_ATTRIBUTES security, PHKEY opened, LPDWORD disposition);
/// Roots stay open whatever happens.
LONG RegCloseKey(HKEY key);
/// 2: no such value. 234: `*size` was too small and is now the size needed; the buffer is as it was.
LONG RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, BYTE* data, LPDWORD size);
/// Keeps the bytes as they are, whatever the type. 87: more than 4096 of them.
LONG RegSetValueExW(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data, DWORD size);
LONG RegDeleteValueW(HKEY key, LPCWSTR name);
/// Deletes the key with all that is under it. An empty path is the key itself. 5: a root.
LONG RegDeleteKeyW(HKEY key, LPCWSTR path);

}  // namespace host

#endif
