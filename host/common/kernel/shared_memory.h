// Blocks of memory that processes share by name.
#ifndef QXHOST_COMMON_KERNEL_SHARED_MEMORY_H
#define QXHOST_COMMON_KERNEL_SHARED_MEMORY_H

#include <windows.h>

namespace host {

/// Creates or opens a block of 1 to 4096 bytes, zeroed when new. `file` must be INVALID_HANDLE_VALUE (else last error
/// 50) and `protect` PAGE_READWRITE (else 87). Null: also last error 6 (the name is another kind of object's), 8 (too
/// large, or no room), 87 (size 0), 206 (name too long). Else the last error is 183 when the block existed, 0
/// otherwise.
HANDLE CreateFileMappingW(HANDLE file, LPSECURITY_ATTRIBUTES security, DWORD protect, DWORD size_high, DWORD size_low,
                          LPCWSTR name);

/// The address of the whole block, 64-byte aligned. The view keeps the block when the handle is closed; its
/// name goes with the last handle. Null: last
/// error 5 (more bytes than the block has room for), 6 (no block), 87 (an offset).
LPVOID MapViewOfFile(HANDLE mapping, DWORD access, DWORD offset_high, DWORD offset_low, SIZE_T bytes);

/// FALSE: last error 487, no view is there.
BOOL UnmapViewOfFile(LPCVOID view);

}  // namespace host

#endif
