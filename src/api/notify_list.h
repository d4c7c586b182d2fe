// The windows of local applications that want to hear of the controller's commands; one list per open service.
#ifndef QXCM_API_NOTIFY_LIST_H
#define QXCM_API_NOTIFY_LIST_H

#include <atomic>
#include <cstdint>
#include <vector>

#include "platform/waiting.h"
#include "platform/windows_api.h"

namespace qxcm {

/// Registrations in their order, at most one per window. Any thread. A window that was destroyed without being taken
/// off the list is dropped by the next notification.
class NotifyList {
 public:
  /// `closing` is the service's: once it is true nothing is posted or sent.
  explicit NotifyList(const std::atomic<bool>& closing) : closing_(closing) {}

  /// QCM_OK, or QCM_BAD_ARGUMENT for no window or a message number outside 0x8000 to 0xBFFF.
  std::int32_t Register(HWND window, UINT message);
  /// QCM_OK, or QCM_NOTHING_RECORDED when the window is not on the list.
  std::int32_t Unregister(HWND window);

  /// Posts to every live window.
  void Post(WPARAM code, LPARAM detail);
  /// Sends to every live window, one after the other; returns when all have handled it. The lock is held meanwhile:
  /// a window must not register or unregister on the same service from another thread while it handles the message.
  void Send(WPARAM code, LPARAM detail);

  /// Whether Send() waits at this moment for a window to handle its notice.
  bool IsSending() const { return receiving_thread_.load(std::memory_order_acquire) != 0; }
  /// Whether Send() waits at this moment for the calling thread, which is handling the notice it sent.
  bool IsSendingToThisThread() const;

 private:
  struct Entry {
    HWND window;
    UINT message;
  };
  template <class Deliver>
  void Walk(Deliver deliver);
  void SendTo(const Entry& entry, WPARAM code, LPARAM detail);
  std::vector<Entry>::iterator Find(HWND window) QXCM_REQUIRES(lock_);

  const std::atomic<bool>& closing_;
  std::atomic<DWORD> receiving_thread_{0};  // the thread whose window handles a sent notice; 0 for none
  WindowSafeLock lock_;
  std::vector<Entry> entries_ QXCM_GUARDED_BY(lock_);
};

}  // namespace qxcm

#endif
