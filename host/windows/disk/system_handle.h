// An owned handle of the system's: files, folders and searches of this machine.
#ifndef QXHOST_WINDOWS_DISK_SYSTEM_HANDLE_H
#define QXHOST_WINDOWS_DISK_SYSTEM_HANDLE_H

#include <windows.h>

#include <utility>

namespace host {

class SystemHandle {
 public:
  SystemHandle() = default;
  explicit SystemHandle(HANDLE handle) : handle_(handle) {}
  SystemHandle(SystemHandle&& other) noexcept : handle_(std::exchange(other.handle_, INVALID_HANDLE_VALUE)) {}
  SystemHandle& operator=(SystemHandle&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~SystemHandle() {
    if (valid()) ::CloseHandle(handle_);
  }

  bool valid() const { return handle_ != INVALID_HANDLE_VALUE; }
  HANDLE get() const { return handle_; }

 private:
  HANDLE handle_ = INVALID_HANDLE_VALUE;
};

}  // namespace host

#endif
