// Where a path leads: the folder it ends in and what, if anything, has its last name there.
//
// A place and what is found there are types of the host's own. Shared code sees them through "disk/places.h", without
// a folder in front: that is the header of the host that is built. What it may look at, as every host has it:
//
//   Place      folder               a DiskEntry; none for the root itself
//              entry                a DiskEntry; none when there is nothing of that name
//              ends_with_separator  the path can mean a folder only
//              is_root()
//   DiskEntry  exists()
//              facts.folder()       else it is a file
//              facts.size
#ifndef QXHOST_COMMON_DISK_PLACES_H
#define QXHOST_COMMON_DISK_PLACES_H

#include <windows.h>

#include <vector>

#include "common/text/utf.h"

namespace host {

struct DiskEntry;
struct Place;

/// Follows the path. Returns 0 or the error: 3 when a folder on the way is missing, 123, 206 or 53 for the path itself.
DWORD Locate(WideView path, Place* place);

/// Locate for something that must be there: error 2 when it is not, 123 for a file named as a folder.
DWORD LocateExisting(WideView path, Place* place);

/// Splits a search pattern into the folder it searches and the last name, which may hold wild cards. Error 2 when it
/// has no last name.
DWORD LocatePattern(WideView pattern, DiskEntry* folder, WideString* name);

// The host's own.

/// Goes from the root through the folders of all names but the last, and looks for that. There is at least one name.
/// Returns 0 or the error: 3 when a folder is missing.
DWORD FindPlace(const std::vector<WideString>& names, Place* place);

/// Goes from the root through the folders of these names, if any. Returns 0 or the error: 3 when one is missing.
DWORD OpenFolder(const std::vector<WideString>& names, DiskEntry* folder);

/// Why names at the place must not be made, changed or removed, as far as the host looks before it tries: 5 for the
/// root, and where nothing else can have the name or the folder is read-only; 19 when the whole disk is. Else 0.
DWORD ChangeRefused(const Place& place);

}  // namespace host

#endif
