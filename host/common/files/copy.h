// Copying files. The data is the host's to copy.
#ifndef QXHOST_COMMON_FILES_COPY_H
#define QXHOST_COMMON_FILES_COPY_H

#include <windows.h>

#include "common/disk/places.h"

namespace host {

/// Why a file must not be copied to the place: CheckNew when nothing is there; else 80 when it shall not be
/// overwritten, 5 for a folder and for a file that is read-only, hidden or the system's, 123. Else 0.
DWORD CheckCopyTarget(const Place& to, bool overwrite);

/// CopyFileW; returns 0 or the error. The host's own.
DWORD CopyByPath(WideView source, WideView destination, bool overwrite);

}  // namespace host

#endif
