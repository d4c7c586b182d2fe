// A window that the application registers for notices: it records them and does with them what it was told to.
#ifndef QXSIM_APPLICATION_NOTIFY_WINDOW_H
#define QXSIM_APPLICATION_NOTIFY_WINDOW_H

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>

#include "qxsim/application/app_window.h"
#include "qxsim/application/notifications.h"
#include "qxsim/application/services.h"

namespace qxsim {

struct WindowPlan {
  std::uint32_t takes_ms = 0;  ///< how long it handles a message
  std::string fetch;           ///< the export whose record it fetches while handling one; empty = none
  bool closes = false;         ///< closes the service while handling the first sent message
};

constexpr UINT kFirstNotice = 0x8000;
constexpr UINT kLastNotice = 0xBFFF;

class NotifyWindow {
 public:
  /// `log` and `services` must outlive the window.
  NotifyWindow(unsigned number, WindowPlan plan, NotificationLog& log, Services& services);
  /// Cuts short what the window is at, and destroys it.
  ~NotifyWindow();

  HWND handle() const { return window_.handle(); }
  /// The service that the window fetches from and closes; 0 (at first) is the application's own.
  void FollowService(QCM_HANDLE handle) { service_ = handle; }
  /// Notices given from here on take no time.
  void Hurry();
  /// Waits until the window has handled what was posted to it, unless it takes its time over a message.
  void Settle(std::chrono::milliseconds time);

 private:
  LRESULT Handle(const WindowMessage& message);
  QCM_HANDLE Service() const;
  std::string FetchRecord();
  void Take(std::uint32_t milliseconds);

  const unsigned number_;
  const WindowPlan plan_;
  NotificationLog& log_;
  Services& services_;
  std::atomic<QCM_HANDLE> service_{0};
  bool closed_ = false;  // the window's thread only
  std::atomic<bool> busy_{false};
  std::mutex mutex_;
  std::condition_variable changed_;
  bool hurry_ = false;  // guarded by mutex_
  AppWindow window_;    // last: its thread uses all the others
};

}  // namespace qxsim

#endif
