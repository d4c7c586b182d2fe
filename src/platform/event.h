// A manual-reset event.
#ifndef QXCM_PLATFORM_EVENT_H
#define QXCM_PLATFORM_EVENT_H

#include <atomic>

#include "platform/handle.h"
#include "platform/windows_api.h"

namespace qxcm {

/// Stays signalled from Set() to Reset(); made not signalled. Any thread may call every function. Waits for it do not
/// rely on the platform alone: should it refuse to set the event, they see what was asked for a little later.
class Event {
 public:
  /// Unnamed, or created or opened under a name. Throws std::runtime_error when the platform has none to give.
  explicit Event(LPCWSTR name = nullptr);

  void Set();
  void Reset();
  /// What this process last asked for.
  bool WasSet() const { return set_.load(std::memory_order_acquire); }
  HANDLE handle() const { return handle_.get(); }

 private:
  void Modify(DWORD function);

  Handle handle_;
  std::atomic<bool> set_{false};
};

/// What ended a wait for two events. kNeither: nothing did; the caller waits again.
enum class Woken { kFirst, kSecond, kNeither };

/// Waits for either event; the first wins when both are signalled.
Woken WaitForEither(const Event& first, const Event& second);

/// Waits for the event at most so long (milliseconds); whether it was signalled.
bool WaitFor(const Event& event, DWORD milliseconds);

}  // namespace qxcm

#endif
