// The last error of each thread.
#ifndef QXHOST_POSIX_CALLS_ERRORS_H
#define QXHOST_POSIX_CALLS_ERRORS_H

#include <windows.h>

namespace host {

/// The calling thread's last error, as GetLastError and SetLastError see it.
DWORD& ThreadError();

/// Sets the last error and returns the value of a failed call, so that both stand in one line.
template <class Result>
Result Fail(DWORD error, Result result) {
  ThreadError() = error;
  return result;
}

}  // namespace host

#endif
