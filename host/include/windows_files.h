// Part of <windows.h>: files and folders by path, and the position in an open file.
#ifndef QXHOST_WINDOWS_FILES_H
#define QXHOST_WINDOWS_FILES_H

#include "windows_time.h"

#ifdef __cplusplus
extern "C" {
#endif

#define MAX_PATH 260
#define FILE_ATTRIBUTE_READONLY 0x01u
#define FILE_ATTRIBUTE_HIDDEN 0x02u
#define FILE_ATTRIBUTE_SYSTEM 0x04u
#define FILE_ATTRIBUTE_DIRECTORY 0x10u
#define FILE_ATTRIBUTE_ARCHIVE 0x20u
#define INVALID_FILE_ATTRIBUTES 0xFFFFFFFFu
#define INVALID_SET_FILE_POINTER 0xFFFFFFFFu
#define FILE_BEGIN 0u
#define FILE_CURRENT 1u
#define FILE_END 2u

// Error codes of these calls.
#define ERROR_NOT_SAME_DEVICE 17u
#define ERROR_NO_MORE_FILES 18u
#define ERROR_WRITE_PROTECT 19u
#define ERROR_BAD_NETPATH 53u
#define ERROR_FILE_EXISTS 80u
#define ERROR_DISK_FULL 112u
#define ERROR_NEGATIVE_SEEK 131u
#define ERROR_DIR_NOT_EMPTY 145u
#define ERROR_FILENAME_EXCED_RANGE 206u
#define ERROR_DIRECTORY 267u

typedef struct _WIN32_FIND_DATAW {
  DWORD dwFileAttributes;
  FILETIME ftCreationTime;
  FILETIME ftLastAccessTime;
  FILETIME ftLastWriteTime;
  DWORD nFileSizeHigh;
  DWORD nFileSizeLow;
  DWORD dwOID;
  WCHAR cFileName[MAX_PATH];
} WIN32_FIND_DATAW, *LPWIN32_FIND_DATAW;

DWORD WINAPI GetFileAttributesW(LPCWSTR path);
BOOL WINAPI CreateDirectoryW(LPCWSTR path, LPSECURITY_ATTRIBUTES security);
BOOL WINAPI RemoveDirectoryW(LPCWSTR path);
BOOL WINAPI DeleteFileW(LPCWSTR path);
BOOL WINAPI CopyFileW(LPCWSTR source, LPCWSTR destination, BOOL fail_if_exists);
BOOL WINAPI MoveFileW(LPCWSTR source, LPCWSTR destination);
HANDLE WINAPI FindFirstFileW(LPCWSTR pattern, LPWIN32_FIND_DATAW found);
BOOL WINAPI FindNextFileW(HANDLE search, LPWIN32_FIND_DATAW found);
BOOL WINAPI FindClose(HANDLE search);
DWORD WINAPI SetFilePointer(HANDLE file, LONG distance, LONG* distance_high, DWORD method);

#ifdef __cplusplus
}
#endif

#endif
