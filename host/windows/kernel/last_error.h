// The host's own work beside a call leaves the call's last error alone.
#ifndef QXHOST_WINDOWS_KERNEL_LAST_ERROR_H
#define QXHOST_WINDOWS_KERNEL_LAST_ERROR_H

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

}  // namespace host

#endif
