// Waiting on a thread that may own windows: messages sent to them are let through meanwhile.
#ifndef QXCM_PLATFORM_WAITING_H
#define QXCM_PLATFORM_WAITING_H

#include "platform/handle.h"
#include "platform/thread_annotations.h"
#include "platform/windows_api.h"

namespace qxcm {

/// Waits for the object while messages sent to the calling thread's windows are handled; posted ones stay queued.
/// Returns whether the object was signalled (or abandoned) within the time (milliseconds or INFINITE).
bool WaitLettingSentMessagesThrough(HANDLE object, DWORD milliseconds);

/// A re-entrant lock for places where its holder may be sending a message to a window of the thread that waits for it.
class QXCM_CAPABILITY WindowSafeLock {
 public:
  /// Throws std::runtime_error when the platform has no mutex to give.
  WindowSafeLock();

  /// Throws std::runtime_error when the platform refuses the wait.
  void Enter() QXCM_ACQUIRE();
  void Leave() QXCM_RELEASE();

 private:
  Handle mutex_;
};

}  // namespace qxcm

#endif
