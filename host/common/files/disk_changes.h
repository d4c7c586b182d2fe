// What a host does to its disk for the file calls, when they have looked at what is there. With the lock of names held;
// all return 0 or the error.
#ifndef QXHOST_COMMON_FILES_DISK_CHANGES_H
#define QXHOST_COMMON_FILES_DISK_CHANGES_H

#include <windows.h>

#include "common/disk/places.h"

namespace host {

/// Makes the folder, with the time of the instrument's clock, where nothing is and ChangeRefused lets it.
DWORD MakeFolderAt(const Place& place);

/// Removes the folder that is there, if it may be.
DWORD RemoveFolderAt(const Place& place);

/// Removes the file that is there, if it may be.
DWORD RemoveFileAt(const Place& place);

/// Gives what is at one place the name and folder of the other, where nothing is or the same, in any letter case.
DWORD MoveTo(const Place& from, const Place& to);

// What a move looks at.

/// 32 for a file that is open, 5 for a folder that holds open files; 0 where the system refuses that itself.
DWORD OpenFilesRefuse(const Place& from);
/// Whether both places have the same file or folder; both have one.
bool SameEntry(const Place& one, const Place& other);
/// Whether the place is in this folder or below it.
bool IsBelow(const Place& place, const DiskEntry& folder);

}  // namespace host

#endif
