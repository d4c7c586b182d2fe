// Attributes and times of files and folders, kept with them by the system.
#ifndef QXHOST_WINDOWS_DISK_ATTRIBUTES_H
#define QXHOST_WINDOWS_DISK_ATTRIBUTES_H

#include <windows.h>

#include "common/disk/attributes.h"
#include "windows/disk/entries.h"

namespace host {

/// A handle that can change attributes and times of the file or folder at a path of this machine, whoever else has it
/// open; not valid, with the last error set, when there is none or it lies elsewhere.
SystemHandle OpenForFacts(const WideString& path);

/// Marks what has just been made with the time of the instrument's clock.
void MarkMade(HANDLE open);
/// The same for what has been written.
void MarkWritten(HANDLE open);

}  // namespace host

#endif
