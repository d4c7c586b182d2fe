// Waiting on a thread that may own windows: messages sent to them are let through meanwhile.
#ifndef QXCM_PLATFORM_WAITING_H
#define QXCM_PLATFORM_WAITING_H

#include "platform/event.h"
#include "platform/lock.h"
#include "platform/thread_annotations.h"
#include "platform/windows_api.h"

namespace qxcm {

/// Waits for the object while messages sent to the calling thread's windows are handled; posted ones stay queued.
/// Returns whether the object was signalled (or abandoned) within the time (milliseconds or INFINITE).
bool WaitLettingSentMessagesThrough(HANDLE object, DWORD milliseconds);

/// A re-entrant lock for places where its holder may be sending a message to a window of the thread that waits for it.
class QXCM_CAPABILITY WindowSafeLock {
 public:
  WindowSafeLock() = default;
  WindowSafeLock(const WindowSafeLock&) = delete;
  WindowSafeLock& operator=(const WindowSafeLock&) = delete;

  void Enter() QXCM_ACQUIRE();
  void Leave() QXCM_RELEASE();

 private:
  bool TryEnter();

  // The event only hurries a waiting thread: it looks by itself now and then, should the platform refuse to set it.
  Lock lock_;
  DWORD holder_ QXCM_GUARDED_BY(lock_) = 0;  // a thread's number; 0 is none
  int depth_ QXCM_GUARDED_BY(lock_) = 0;
  Event free_;
};

}  // namespace qxcm

#endif
