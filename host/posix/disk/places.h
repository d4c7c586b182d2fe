// Where a path leads: the folder it ends in and what, if anything, has its last name there.
#ifndef QXHOST_POSIX_DISK_PLACES_H
#define QXHOST_POSIX_DISK_PLACES_H

#include <windows.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "posix/disk/entries.h"

namespace host {

struct Place {
  std::vector<FileId> folders;       ///< from the root to the folder; empty for the root itself
  DiskEntry folder;                  ///< none for the root itself
  DiskEntry entry;                   ///< none when there is nothing of that name
  std::string new_name;              ///< what a file or folder made here is called on this machine
  bool ends_with_separator = false;  ///< the path can mean a folder only

  bool root() const { return !folder.exists(); }
  /// A file, but the path speaks of a folder.
  bool file_named_as_folder() const { return ends_with_separator && entry.exists() && entry.facts.file(); }
};

/// Follows the path. Returns 0 or the error: 3 when a folder on the way is missing, 123, 206 or 53 for the path itself.
DWORD Locate(std::u16string_view path, Place* place);

/// Locate for something that must be there: error 2 when it is not, 123 for a file named as a folder.
DWORD LocateExisting(std::u16string_view path, Place* place);

/// Splits a search pattern into the folder it searches and the last name, which may hold wild cards. Error 2 when it
/// has no last name.
DWORD LocatePattern(std::u16string_view pattern, DiskEntry* folder, std::u16string* name);

/// Why names in the place's folder must not be made, changed or removed: 19 when the root is write-protected, which it
/// is when its owner cannot write it or the machine's file system is read-only; 5 when the folder is. 0 if they may.
DWORD ChangeRefused(const Place& place);

/// 19 when the whole file system is write-protected, else 0.
DWORD WriteProtected();

}  // namespace host

#endif
