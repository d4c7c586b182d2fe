// Short words for the kernel objects that the tests make.
#ifndef QXTEST_PLATFORM_KERNEL_OBJECTS_H
#define QXTEST_PLATFORM_KERNEL_OBJECTS_H

#include <functional>
#include <utility>

#include "../../src/platform/windows_api.h"

namespace platform_test {

constexpr DWORD kLong = 20000;  ///< milliseconds: a wait that is expected to end earlier
constexpr DWORD kShort = 50;    ///< milliseconds: a wait that is expected to time out

class Handle {
 public:
  explicit Handle(HANDLE handle) : handle_(handle) {}
  Handle(Handle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  ~Handle() { Close(); }
  operator HANDLE() const { return handle_; }
  void Close() {
    if (handle_ != nullptr) CloseHandle(std::exchange(handle_, nullptr));
  }

 private:
  HANDLE handle_;
};

inline Handle ManualEvent(LPCWSTR name = nullptr) { return Handle(CreateEventW(nullptr, TRUE, FALSE, name)); }
inline Handle AutoEvent(LPCWSTR name = nullptr) { return Handle(CreateEventW(nullptr, FALSE, FALSE, name)); }
inline Handle FreeMutex(LPCWSTR name = nullptr) { return Handle(CreateMutexW(nullptr, FALSE, name)); }
inline Handle OwnedMutex(LPCWSTR name = nullptr) { return Handle(CreateMutexW(nullptr, TRUE, name)); }
inline Handle Block(LPCWSTR name, DWORD size) {
  return Handle(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, size, name));
}

inline void Set(HANDLE event) { EventModify(event, kEventSet); }
inline void Reset(HANDLE event) { EventModify(event, kEventReset); }
inline DWORD Wait(HANDLE object, DWORD milliseconds = kLong) { return WaitForSingleObject(object, milliseconds); }
inline bool IsSet(HANDLE object) { return WaitForSingleObject(object, 0) == WAIT_OBJECT_0; }

/// A thread made by CreateThread; joined by its destructor.
class TestThread {
 public:
  explicit TestThread(std::function<DWORD()> body, DWORD flags = 0)
      : body_(std::move(body)), handle_(CreateThread(nullptr, 0, Run, this, flags, &id_)) {}
  TestThread(const TestThread&) = delete;
  TestThread& operator=(const TestThread&) = delete;
  ~TestThread() { Wait(handle_, INFINITE); }
  HANDLE handle() const { return handle_; }
  DWORD id() const { return id_; }
  DWORD Join() {
    DWORD code = 0;
    Wait(handle_, INFINITE);
    GetExitCodeThread(handle_, &code);
    return code;
  }

 private:
  static DWORD WINAPI Run(LPVOID self) { return static_cast<TestThread*>(self)->body_(); }

  const std::function<DWORD()> body_;
  DWORD id_ = 0;
  const Handle handle_;
};

}  // namespace platform_test

#endif
