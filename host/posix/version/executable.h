// Finds the version resource in the bytes of a Windows program or library file, 32 or 64 bits wide.
#ifndef QXHOST_POSIX_VERSION_EXECUTABLE_H
#define QXHOST_POSIX_VERSION_EXECUTABLE_H

#include <windows.h>

#include "posix/version/bytes.h"

namespace host {

/// The file's version resource in its first language: a part of `file`, at most 65535 bytes long.
/// ERROR_SUCCESS, or, with `resource` left as it is:
///   11    the file ends before something it refers to, or the resource is too short or too long to be one
///   1812  the file is no such executable, or has no resources
///   1813  it has no version resource
///   1814  it has one, but not under the number 1
DWORD FindVersionResource(Bytes file, Bytes* resource);

}  // namespace host

#endif
