// The system's own handles that the host has handed out: whose they are.
#ifndef QXHOST_WINDOWS_KERNEL_REAL_HANDLES_H
#define QXHOST_WINDOWS_KERNEL_REAL_HANDLES_H

#include <windows.h>

#include <cstddef>

namespace host {

// Any thread, as all here. The last error stays as it is.

/// Takes note of a handle that has just been made, as the library's inside one of its calls; null and
/// INVALID_HANDLE_VALUE are none. Returns it.
HANDLE NoteHandle(HANDLE made);

/// The same for a handle of an object with a name: while one is open, the names' folder stays (named_objects.h).
HANDLE NoteNamedHandle(HANDLE made);

/// The handle is about to be closed, or has been.
void ForgetHandle(HANDLE handle);

/// How many of the handles noted are the library's.
std::size_t LibraryRealHandles();
/// How many of them name objects with a name.
std::size_t NamedHandles();

}  // namespace host

#endif
