// Places on this host; what is done with them stands in common/disk/places.h.
#ifndef QXHOST_WINDOWS_DISK_PLACES_H
#define QXHOST_WINDOWS_DISK_PLACES_H

#include <windows.h>

#include <memory>

#include "common/disk/places.h"
#include "windows/disk/entries.h"
#include "windows/disk/root_folder.h"

namespace host {

struct Place {
  std::shared_ptr<const RootFolder> root;  ///< kept while it is used; none for the root itself
  DiskEntry folder;
  DiskEntry entry;
  WideString new_path;  ///< where on this machine a file or folder made here goes
  bool ends_with_separator = false;

  bool is_root() const { return !folder.exists(); }
};

}  // namespace host

#endif
