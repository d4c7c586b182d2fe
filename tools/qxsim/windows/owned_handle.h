// A handle of this machine, closed by its owner.
#ifndef QXSIM_WINDOWS_OWNED_HANDLE_H
#define QXSIM_WINDOWS_OWNED_HANDLE_H

#include <windows.h>

namespace qxsim {

class OwnedHandle {
 public:
  /// INVALID_HANDLE_VALUE when there is none.
  explicit OwnedHandle(HANDLE handle) : handle_(handle) {}
  OwnedHandle(const OwnedHandle&) = delete;
  OwnedHandle& operator=(const OwnedHandle&) = delete;
  ~OwnedHandle() {
    if (good()) ::CloseHandle(handle_);
  }

  bool good() const { return handle_ != INVALID_HANDLE_VALUE; }
  HANDLE get() const { return handle_; }

 private:
  const HANDLE handle_;
};

}  // namespace qxsim

#endif
