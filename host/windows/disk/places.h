// Where a path leads: the folder it ends in and what, if anything, has its last name there.
#ifndef QXHOST_WINDOWS_DISK_PLACES_H
#define QXHOST_WINDOWS_DISK_PLACES_H

#include <windows.h>

#include <memory>

#include "windows/disk/entries.h"
#include "windows/disk/file_root.h"

namespace host {

struct Place {
  std::shared_ptr<const RootFolder> root;  ///< kept while it is used
  DiskEntry folder;                        ///< none for the root itself
  DiskEntry entry;                         ///< none when there is nothing of that name
  WideString new_path;                     ///< where on this machine a file or folder made here goes
  bool ends_with_separator = false;        ///< the path can mean a folder only

  bool is_root() const { return !folder.exists(); }
  /// A file, but the path speaks of a folder.
  bool file_named_as_folder() const { return ends_with_separator && entry.exists() && !entry.facts.folder(); }
};

/// Follows the path. Returns 0 or the error: 3 when a folder on the way is missing, 123, 206 or 53 for the path itself.
DWORD Locate(WideView path, Place* place);

/// Locate for something that must be there: error 2 when it is not, 123 for a file named as a folder.
DWORD LocateExisting(WideView path, Place* place);

/// Splits a search pattern into the folder it searches and the last name, which may hold wild cards. Error 2 when it
/// has no last name.
DWORD LocatePattern(WideView pattern, DiskEntry* folder, WideString* name);

/// Why names at the place must not be made, changed or removed: 5 for the root, and where the name is taken by what is
/// no file of the instrument. 0 if they may, as far as it is not the system that refuses.
DWORD ChangeRefused(const Place& place);

}  // namespace host

#endif
