// The folder behind common/files/file_root.h.
#ifndef QXHOST_COMMON_DISK_ROOT_FOLDER_H
#define QXHOST_COMMON_DISK_ROOT_FOLDER_H

#include <memory>
#include <string>

namespace host {

struct RootFolder;  // the host's own: disk/root_folder.h

/// Null when there is none.
std::shared_ptr<const RootFolder> FileRoot();

/// The host's own: throws std::system_error when it cannot be opened.
std::shared_ptr<const RootFolder> OpenRootFolder(const std::string& folder);

}  // namespace host

#endif
