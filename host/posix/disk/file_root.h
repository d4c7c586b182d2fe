// The folder of this machine that is the whole file system of the instrument: "\Temp\a.txt" is Temp/a.txt in it.
#ifndef QXHOST_POSIX_DISK_FILE_ROOT_H
#define QXHOST_POSIX_DISK_FILE_ROOT_H

#include <windows.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "posix/kernel/file_descriptor.h"

namespace host {

/// Uses this folder from now on; files that are open stay open. Throws std::system_error when it cannot be opened.
void SetFileRoot(const std::string& folder);
/// No folder, as at start: every call with a path fails with error 3.
void ClearFileRoot();

/// How many more bytes files may grow by: deleting files gives room again. Nothing = as many as this machine has room
/// for, as at start. Files only; folders and names take no room.
void SetFreeFileSpace(std::optional<std::uint64_t> bytes);

/// Takes room for a file's growth; false when there is not enough.
bool TakeFileSpace(std::uint64_t bytes);
void GiveFileSpace(std::uint64_t bytes);

/// The root's descriptor, good for *at() calls; null when there is none.
std::shared_ptr<const FileDescriptor> FileRoot();

/// Held while names are looked up and then made, changed or removed, so that no two calls of this process act on one
/// name at once. Data is read and written without it.
std::unique_lock<std::mutex> LockNames();

}  // namespace host

#endif
