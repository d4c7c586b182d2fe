// Attributes and times of what is on this machine's disk, as the instrument has them. How they are kept is the host's.
#ifndef QXHOST_COMMON_DISK_ATTRIBUTES_H
#define QXHOST_COMMON_DISK_ATTRIBUTES_H

#include <windows.h>

namespace host {

struct DiskEntry;

/// The attributes that can be set.
constexpr DWORD kSettableAttributes =
    FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE;

/// UTC.
struct FileTimes {
  FILETIME made;
  FILETIME accessed;
  FILETIME written;
};

/// As GetFileAttributesW gives them: those above, FILE_ATTRIBUTE_DIRECTORY, or FILE_ATTRIBUTE_NORMAL when there is
/// none.
DWORD AttributesOf(const DiskEntry& entry);
FileTimes TimesOf(const DiskEntry& entry);

/// Sets those of kSettableAttributes, whoever has the file open. Returns 0, or the error with nothing changed: 50 when
/// this machine cannot keep them.
DWORD StoreAttributes(const DiskEntry& entry, DWORD attributes);

/// Sets the last-write time, whoever has the file open; returns 0 or the error.
DWORD StoreWrittenTime(const DiskEntry& entry, const FILETIME& written);

}  // namespace host

#endif
