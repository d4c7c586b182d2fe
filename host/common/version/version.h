// The version resource of a program or library file.
#ifndef QXHOST_COMMON_VERSION_VERSION_H
#define QXHOST_COMMON_VERSION_VERSION_H

#include <windows.h>

namespace host {

/// The size of the file's version resource in bytes, and 0 into `unused` where that is not null.
/// 0: last error 87 (no name), what opening or reading the file says (2, 3, 5 ...), 8 (a file of more than 64 MiB),
/// 11 (damaged), 1812 (no executable, or no resources), 1813 (no version resource), 1814 (one of another number).
DWORD GetFileVersionInfoSizeW(LPCWSTR file, LPDWORD unused);

/// Copies the resource, as much of it as fits, so that VerQueryValueW never leaves those bytes.
/// FALSE: as above, or last error 13 (no buffer), 122 (one too small for the first block's header).
BOOL GetFileVersionInfoW(LPCWSTR file, DWORD unused, DWORD size, LPVOID resource);

/// Where in the copied resource the value of a path lies ("\", "\VarFileInfo\Translation",
/// "\StringFileInfo\040904b0\FileVersion") and its length: in 16-bit units for text, else in bytes; `size` may be null.
/// A value of no length is somewhere else: a zero that must not be written.
/// FALSE: last error 1813 (no such value), 87 (another null pointer); the length is then 0.
BOOL VerQueryValueW(LPCVOID resource, LPCWSTR name, LPVOID* value, UINT* size);

}  // namespace host

#endif
