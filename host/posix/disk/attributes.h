// Attributes and times of files and folders, kept with them on this machine.
//
// A file is read-only when its owner cannot write it. All else is kept in the extended attribute user.qx.attributes as
// letters (h hidden, s system, a archive, and for folders r read-only); a file without it has the archive attribute, a
// folder none. Where this machine's file system keeps no such attribute, only those can be had; setting others fails
// with error 50.
#ifndef QXHOST_POSIX_DISK_ATTRIBUTES_H
#define QXHOST_POSIX_DISK_ATTRIBUTES_H

#include <windows.h>

#include <ctime>

#include "common/disk/attributes.h"
#include "posix/disk/entries.h"

namespace host {

/// StoreAttributes for an open descriptor, which need not be a pin.
DWORD StoreAttributes(int descriptor, const FileFacts& facts, DWORD attributes);

/// Sets the archive attribute of a file that has been written, and its last-write time by the instrument's clock; the
/// descriptor need not be a pin.
void MarkWritten(int descriptor);

/// The time of the instrument's clock.
timespec InstrumentTime();

/// StoreWrittenTime for an open descriptor.
DWORD StoreWrittenTime(int descriptor, const timespec& written);

/// Units of 100 ns since 1601, UTC.
FILETIME ToFileTime(const timespec& time);
timespec FromFileTime(const FILETIME& time);

}  // namespace host

#endif
