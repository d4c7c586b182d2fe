// Part of <windows.h>: the registry. Its calls return error codes.
#ifndef QXHOST_WINDOWS_REGISTRY_H
#define QXHOST_WINDOWS_REGISTRY_H

#ifdef __cplusplus
extern "C" {
#endif

struct HKEY__;
typedef struct HKEY__* HKEY;
typedef HKEY* PHKEY;
#define HKEY_CLASSES_ROOT ((HKEY)(uintptr_t)0x80000000u)
#define HKEY_CURRENT_USER ((HKEY)(uintptr_t)0x80000001u)
#define HKEY_LOCAL_MACHINE ((HKEY)(uintptr_t)0x80000002u)
#define HKEY_USERS ((HKEY)(uintptr_t)0x80000003u)
#define KEY_READ 0x00020019u
#define KEY_ALL_ACCESS 0x000F003Fu
#define REG_SZ 1u
#define REG_BINARY 3u
#define REG_DWORD 4u
#define REG_CREATED_NEW_KEY 1u
#define REG_OPENED_EXISTING_KEY 2u

// Error codes.
#define ERROR_OUTOFMEMORY 14u
#define ERROR_DISK_FULL 112u
#define ERROR_BAD_PATHNAME 161u
#define ERROR_MORE_DATA 234u
#define ERROR_REGISTRY_IO_FAILED 1016u
#define ERROR_KEY_DELETED 1018u

LONG WINAPI RegOpenKeyExW(HKEY key, LPCWSTR path, DWORD options, DWORD access, PHKEY opened);
LONG WINAPI RegCreateKeyExW(HKEY key, LPCWSTR path, DWORD reserved, LPWSTR key_class, DWORD options, DWORD access,
                            LPSECURITY_ATTRIBUTES security, PHKEY opened, LPDWORD disposition);
LONG WINAPI RegCloseKey(HKEY key);
LONG WINAPI RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, BYTE* data, LPDWORD size);
LONG WINAPI RegSetValueExW(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data, DWORD size);
LONG WINAPI RegDeleteValueW(HKEY key, LPCWSTR name);
LONG WINAPI RegDeleteKeyW(HKEY key, LPCWSTR path);

#ifdef __cplusplus
}
#endif

#endif
