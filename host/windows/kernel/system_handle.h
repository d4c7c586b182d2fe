// An owned handle of the system's, for the host's own use.
#ifndef QXHOST_WINDOWS_KERNEL_SYSTEM_HANDLE_H
#define QXHOST_WINDOWS_KERNEL_SYSTEM_HANDLE_H

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

  /// Neither of the two values that the system's calls fail with.
  bool valid() const { return handle_ != INVALID_HANDLE_VALUE && handle_ != nullptr; }
  HANDLE get() const { return handle_; }

 private:
  HANDLE handle_ = INVALID_HANDLE_VALUE;
};

}  // namespace host

#endif
