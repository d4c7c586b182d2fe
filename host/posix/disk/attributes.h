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

#include "posix/disk/entries.h"

namespace host {

/// The attributes that can be set.
constexpr DWORD kSettableAttributes =
    FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE;

/// As GetFileAttributesW gives them: FILE_ATTRIBUTE_NORMAL when there is none.
DWORD ReadAttributes(int descriptor, const FileFacts& facts);
DWORD ReadAttributes(const DiskEntry& entry);

/// Sets those of kSettableAttributes. Returns 0, or the error with nothing changed.
DWORD StoreAttributes(int descriptor, const FileFacts& facts, DWORD attributes);

/// Sets the archive attribute of a file that has been written, and its last-write time by the instrument's clock; the
/// descriptor need not be a pin.
void MarkWritten(int descriptor);

/// The time of the instrument's clock.
timespec InstrumentTime();

/// Sets the last-write time; returns 0 or the error.
DWORD StoreWrittenTime(int descriptor, const timespec& written);

/// Units of 100 ns since 1601, UTC.
FILETIME ToFileTime(const timespec& time);
timespec FromFileTime(const FILETIME& time);

}  // namespace host

#endif
