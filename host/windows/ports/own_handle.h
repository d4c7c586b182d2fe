// A handle of the system's that the host has made for itself.
#ifndef QXHOST_WINDOWS_PORTS_OWN_HANDLE_H
#define QXHOST_WINDOWS_PORTS_OWN_HANDLE_H

#include <windows.h>

namespace host {

/// Closes it in the end. Null and INVALID_HANDLE_VALUE are none.
class OwnHandle {
 public:
  explicit OwnHandle(HANDLE handle) : handle_(handle) {}
  OwnHandle(const OwnHandle&) = delete;
  OwnHandle& operator=(const OwnHandle&) = delete;
  ~OwnHandle() {
    if (*this) ::CloseHandle(handle_);
  }
  explicit operator bool() const { return handle_ != nullptr && handle_ != INVALID_HANDLE_VALUE; }
  HANDLE get() const { return handle_; }

 private:
  const HANDLE handle_;
};

enum class Reset { kAutomatic, kManual };

inline HANDLE NewEvent(Reset reset) { return ::CreateEventW(nullptr, reset == Reset::kManual, FALSE, nullptr); }

}  // namespace host

#endif
