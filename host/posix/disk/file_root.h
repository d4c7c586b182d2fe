// The folder behind common/files/file_root.h, its room, and the lock on its names.
#ifndef QXHOST_POSIX_DISK_FILE_ROOT_H
#define QXHOST_POSIX_DISK_FILE_ROOT_H

#include <cstdint>
#include <memory>
#include <mutex>

#include "posix/kernel/file_descriptor.h"

namespace host {

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
