// The root's folder on this host.
#ifndef QXHOST_POSIX_DISK_ROOT_FOLDER_H
#define QXHOST_POSIX_DISK_ROOT_FOLDER_H

#include "common/disk/root_folder.h"
#include "posix/kernel/file_descriptor.h"

namespace host {

struct RootFolder {
  FileDescriptor descriptor;  ///< good for *at() calls
};

}  // namespace host

#endif
