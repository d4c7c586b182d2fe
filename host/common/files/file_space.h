// The room behind common/files/file_root.h, and the lock on names: what every host's file calls share.
#ifndef QXHOST_COMMON_FILES_FILE_SPACE_H
#define QXHOST_COMMON_FILES_FILE_SPACE_H

#include <cstdint>
#include <mutex>

namespace host {

/// Takes room for a file's growth; false when there is not enough.
bool TakeFileSpace(std::uint64_t bytes);
void GiveFileSpace(std::uint64_t bytes);

/// Held while names are looked up and then made, changed or removed, so that no two calls of this process act on one
/// name at once. Data is read and written without it.
std::unique_lock<std::mutex> LockNames();

}  // namespace host

#endif
