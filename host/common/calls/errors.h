// The last error of each thread.
#ifndef QXHOST_COMMON_CALLS_ERRORS_H
#define QXHOST_COMMON_CALLS_ERRORS_H

#include <windows.h>

namespace host {

/// Sets the last error and returns the value of a failed call, so that both stand in one line.
template <class Result>
Result Fail(DWORD error, Result result) {
  SetLastError(error);
  return result;
}

/// What a call returns that has ended with this error, 0 for none.
inline BOOL Done(DWORD error) { return error == ERROR_SUCCESS ? TRUE : Fail(error, FALSE); }

}  // namespace host

#endif
