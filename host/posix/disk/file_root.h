// The folder behind common/files/file_root.h.
#ifndef QXHOST_POSIX_DISK_FILE_ROOT_H
#define QXHOST_POSIX_DISK_FILE_ROOT_H

#include <memory>

#include "posix/kernel/file_descriptor.h"

namespace host {

/// The root's descriptor, good for *at() calls; null when there is none.
std::shared_ptr<const FileDescriptor> FileRoot();

}  // namespace host

#endif
