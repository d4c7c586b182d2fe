// Places on this host; what is done with them stands in common/disk/places.h.
#ifndef QXHOST_POSIX_DISK_PLACES_H
#define QXHOST_POSIX_DISK_PLACES_H

#include <windows.h>

#include <string>
#include <vector>

#include "common/disk/places.h"
#include "posix/disk/entries.h"

namespace host {

struct Place {
  std::vector<FileId> folders;  ///< from the root to the folder; empty for the root itself
  DiskEntry folder;
  DiskEntry entry;
  std::string new_name;  ///< what a file or folder made here is called on this machine
  bool ends_with_separator = false;

  bool is_root() const { return !folder.exists(); }
};

/// 19 when the whole file system is write-protected, which it is when the root's owner cannot write it or the machine's
/// file system is read-only; else 0.
DWORD WriteProtected();

}  // namespace host

#endif
