// The folder of this machine that is the whole file system of the instrument: "\Temp\a.txt" is Temp/a.txt in it.
#ifndef QXHOST_COMMON_FILES_FILE_ROOT_H
#define QXHOST_COMMON_FILES_FILE_ROOT_H

#include <cstdint>
#include <optional>
#include <string>

namespace host {

/// Uses this folder from now on; files that are open stay open. Throws std::system_error when it cannot be opened.
void SetFileRoot(const std::string& folder);
/// No folder, as at start: every call with a path fails with error 3.
void ClearFileRoot();

/// How many more bytes files may grow by: deleting files gives room again. Nothing = as many as this machine has room
/// for, as at start. Files only; folders and names take no room.
void SetFreeFileSpace(std::optional<std::uint64_t> bytes);

}  // namespace host

#endif
