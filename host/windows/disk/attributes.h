// Attributes and times of files and folders, kept with them by the system.
#ifndef QXHOST_WINDOWS_DISK_ATTRIBUTES_H
#define QXHOST_WINDOWS_DISK_ATTRIBUTES_H

#include <windows.h>

#include "windows/disk/entries.h"

namespace host {

/// The attributes that can be set.
constexpr DWORD kSettableAttributes =
    FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE;

/// As GetFileAttributesW gives them on the instrument: those above, FILE_ATTRIBUTE_DIRECTORY, or FILE_ATTRIBUTE_NORMAL
/// when there is none.
DWORD InstrumentAttributes(const FileFacts& facts);

/// A handle that can change attributes and times of the file or folder at a path of this machine, whoever else has it
/// open; not valid, with the last error set, when there is none or it lies elsewhere.
SystemHandle OpenForFacts(const WideString& path);

/// Sets those of kSettableAttributes. Returns 0, or the error with nothing changed: 50 when the system does not keep
/// them.
DWORD StoreAttributes(HANDLE open, DWORD attributes);

/// Sets the last-write time; returns 0 or the error.
DWORD StoreWrittenTime(HANDLE open, const FILETIME& written);

/// Marks what has just been made with the time of the instrument's clock.
void MarkMade(HANDLE open);
/// The same for what has been written.
void MarkWritten(HANDLE open);

}  // namespace host

#endif
