// A platform handle with one owner.
#ifndef QXCM_PLATFORM_HANDLE_H
#define QXCM_PLATFORM_HANDLE_H

#include <utility>

#include "platform/windows_api.h"

namespace qxcm {

/// Closes its handle when it goes. Null and INVALID_HANDLE_VALUE both count as empty.
class Handle {
 public:
  Handle() = default;
  explicit Handle(HANDLE handle) : handle_(handle == INVALID_HANDLE_VALUE ? nullptr : handle) {}
  Handle(Handle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  Handle& operator=(Handle&& other) noexcept {
    if (this != &other) {
      Close();
      handle_ = std::exchange(other.handle_, nullptr);
    }
    return *this;
  }
  ~Handle() { Close(); }

  HANDLE get() const { return handle_; }
  explicit operator bool() const { return handle_ != nullptr; }

  void Close() {
    if (handle_ != nullptr) CloseHandle(std::exchange(handle_, nullptr));
  }

 private:
  HANDLE handle_ = nullptr;
};

}  // namespace qxcm

#endif
