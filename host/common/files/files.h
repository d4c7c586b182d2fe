// The platform's calls on files and folders. Paths are as common/disk/paths.h says; without a root every path is
// error 3.
//
// Common errors: 2 nothing of that name, 3 a folder on the way is missing (or a file), 5 refused (read-only, a folder
// where a file is meant, a folder that its owner cannot write), 19 the disk is write-protected, 32 a file is open, 53
// 123 206 a path as it must not be, 112 the disk is full, 4 too many open files of this machine.
#ifndef QXHOST_COMMON_FILES_FILES_H
#define QXHOST_COMMON_FILES_FILES_H

#include <windows.h>

#include <memory>
#include <string>

#include "common/streams/devices.h"

namespace host {

/// Opens or makes the file for CreateFileW: CREATE_NEW (80 when there is one) or OPEN_EXISTING, for reading, writing or
/// both, with plain flags. Error 50 for the other dispositions and flags, 87 for what the platform does not know.
std::shared_ptr<Stream> OpenFileByPath(LPCWSTR path, const OpenRequest& request);

/// Moves the position in an open file and returns it. On success the last error is 0. Without a place for the high part
/// the distance is a signed 32-bit number and a position beyond 32 bits is error 87; one before the start is 131.
DWORD SetFilePointer(HANDLE file, LONG distance, LONG* distance_high, DWORD method);

DWORD GetFileAttributesW(LPCWSTR path);
/// 183 when there is a file or folder of that name.
BOOL CreateDirectoryW(LPCWSTR path, LPSECURITY_ATTRIBUTES security);
/// 145 when it is not empty, 267 for a file.
BOOL RemoveDirectoryW(LPCWSTR path);
BOOL DeleteFileW(LPCWSTR path);

/// Copies data, attributes (and sets archive) and last-write time. A copy that fails half-way is removed.
/// 80 when the destination exists and shall not be overwritten.
BOOL CopyFileW(LPCWSTR source, LPCWSTR destination, BOOL fail_if_exists);
/// Renames a file or folder, also to another folder or in letter case alone. 183 when the destination is something
/// else that exists; 32 for an open file or a folder into itself, 5 for a folder that holds open files.
BOOL MoveFileW(LPCWSTR source, LPCWSTR destination);

/// Searches a folder for the names that match the last name of the pattern, in the order of their upper-case names. The
/// names are taken at once; attributes, sizes and times as each is told. 2 when there is none.
HANDLE FindFirstFileW(LPCWSTR pattern, LPWIN32_FIND_DATAW found);
/// 18 when there are no more.
BOOL FindNextFileW(HANDLE search, LPWIN32_FIND_DATAW found);
BOOL FindClose(HANDLE search);

/// The pattern of a search (UTF-8), empty when the handle names something else.
std::string SearchName(HANDLE search);

}  // namespace host

#endif
