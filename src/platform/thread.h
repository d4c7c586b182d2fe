// A thread that is made suspended, resumed once and joined.
#ifndef QXCM_PLATFORM_THREAD_H
#define QXCM_PLATFORM_THREAD_H

#include <atomic>
#include <functional>

#include "platform/handle.h"
#include "platform/windows_api.h"

namespace qxcm {

/// Owns one thread at a time. Create, Start and Join are called by the owner, one at a time. A started thread must be
/// joined before the object goes.
class Thread {
 public:
  Thread() = default;
  Thread(const Thread&) = delete;
  Thread& operator=(const Thread&) = delete;

  /// Makes the thread suspended; false when the platform has none to give. `body` must not throw.
  bool Create(std::function<void()> body);
  /// Lets the created thread run. False when the platform refuses to: then there is no thread any more.
  bool Start();

  bool created() const { return static_cast<bool>(handle_); }
  /// The body has returned (or nothing was created).
  bool finished() const { return finished_.load(std::memory_order_acquire); }
  HANDLE handle() const { return handle_.get(); }

  /// Waits until the body has returned and lets go of the thread. Nothing to do when no thread was created.
  void Join();
  /// The same, for so many milliseconds at most, while messages sent to the calling thread's windows are handled: for
  /// threads that may be sending one. False when the body has not returned by then.
  bool JoinLettingSentMessagesThrough(DWORD milliseconds);

 private:
  bool LetGo(bool ended);
  static DWORD WINAPI Run(LPVOID self);

  std::function<void()> body_;
  Handle handle_;
  std::atomic<bool> finished_{true};
};

}  // namespace qxcm

#endif
