// A manual-reset event.
#ifndef QXCM_PLATFORM_EVENT_H
#define QXCM_PLATFORM_EVENT_H

#include <atomic>

#include "platform/handle.h"
#include "platform/windows_api.h"

namespace qxcm {

/// Stays signalled from Set() to Reset(); made not signalled. Any thread may call every function.
class Event {
 public:
  /// Unnamed, or created or opened under a name. Throws std::runtime_error when the platform has none to give.
  explicit Event(LPCWSTR name = nullptr);

  void Set();
  void Reset();
  /// What this process last asked for; tells a thread whose wait failed whether it was to be woken.
  bool WasSet() const { return set_.load(std::memory_order_acquire); }
  HANDLE handle() const { return handle_.get(); }

 private:
  Handle handle_;
  std::atomic<bool> set_{false};
};

/// What ended a wait for two events.
enum class Woken { kFirst, kSecond, kNeither };

/// Waits without time-out; the first event wins when both are signalled. A wait that the platform refuses is
/// retried by the caller: it answers from what was last asked of the first event, after a short pause.
Woken WaitForEither(const Event& first, const Event& second);

}  // namespace qxcm

#endif
