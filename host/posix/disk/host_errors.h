// Error codes of this machine's file calls as the platform's.
#ifndef QXHOST_POSIX_DISK_HOST_ERRORS_H
#define QXHOST_POSIX_DISK_HOST_ERRORS_H

#include <windows.h>

namespace host {

/// The last error that stands for an errno; 31 (general failure) for one that has no counterpart.
DWORD ErrorFrom(int host_error);

/// The same for the errno just left behind.
DWORD HostError();

}  // namespace host

#endif
