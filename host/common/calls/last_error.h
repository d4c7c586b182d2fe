// The last error of a call, and the host's own work in and beside it, which leaves it alone.
#ifndef QXHOST_COMMON_CALLS_LAST_ERROR_H
#define QXHOST_COMMON_CALLS_LAST_ERROR_H

#include <windows.h>

namespace host {

class KeepLastError {
 public:
  KeepLastError() : error_(GetLastError()) {}
  ~KeepLastError() { SetLastError(error_); }
  KeepLastError(const KeepLastError&) = delete;
  KeepLastError& operator=(const KeepLastError&) = delete;

 private:
  const DWORD error_;
};

/// Made when a call begins. A call that succeeds leaves the last error as it was then, whatever it had to look for.
class LastErrorBefore {
 public:
  LastErrorBefore() : error_(GetLastError()) {}

  /// Ends the call: `failed` with the error as the last one, or `good` when it is 0.
  template <class Result>
  Result End(DWORD error, Result good, Result failed) const {
    SetLastError(error == ERROR_SUCCESS ? error_ : error);
    return error == ERROR_SUCCESS ? good : failed;
  }

 private:
  const DWORD error_;
};

}  // namespace host

#endif
