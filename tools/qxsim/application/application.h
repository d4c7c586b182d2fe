// The instrument's own application: its event window, further windows for notices, and the services it has open.
#ifndef QXSIM_APPLICATION_APPLICATION_H
#define QXSIM_APPLICATION_APPLICATION_H

#include <windows.h>

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "qxsim/application/app_window.h"
#include "qxsim/application/notifications.h"
#include "qxsim/application/notify_window.h"
#include "qxsim/application/services.h"

namespace qxsim {

constexpr unsigned kEventWindowNumber = 1;
constexpr std::size_t kMostWindows = 64;
constexpr UINT kStandardEventMessage = 1024;

/// Any thread. The windows are known by small numbers: 1 is the event window.
class Application {
 public:
  /// Makes the event window and names it to the system library. Throws std::runtime_error.
  explicit Application(NotificationLog::Observer observer);
  Application(const Application&) = delete;
  Application& operator=(const Application&) = delete;
  /// Closes all services, then destroys all windows.
  ~Application();

  Services& services() { return services_; }

  /// Makes a window and returns its number; 0 when there are kMostWindows.
  unsigned MakeWindow(WindowPlan plan);
  /// Destroys a window without taking it off any service's list; false when there is no such window or it is the
  /// event window.
  bool DestroyWindow(unsigned number);
  /// The window of this number, also after it was destroyed; some dead window for any other number.
  HWND Find(std::uint64_t number) const;
  /// The window fetches records from this service and closes it from now on.
  void FollowService(HWND window, QCM_HANDLE service);

  /// The notices from `since` on, all those given before the call among them unless their window is busy, and in
  /// `next` the number to ask from next time.
  std::vector<Notification> NotificationsSince(std::uint64_t since, std::uint64_t* next);

  /// What the system library shall hand out from the next first open on.
  void NameEventWindow(UINT message, bool exists);
  UINT event_message() const { return event_message_; }
  bool event_window_exists() const { return event_window_exists_; }
  bool Subclassed() const { return event_window_.Subclassed(); }
  /// How often the event window's own procedure was called with an event through another before it.
  std::uint64_t previous_called() const { return previous_called_; }
  void ForgetPreviousCalls() { previous_called_ = 0; }

  /// Closes all services; whatever a window is at is cut short.
  void CloseServices();

 private:
  LRESULT HandleEventWindow(const WindowMessage& message);

  NotificationLog notifications_;
  Services services_;
  std::atomic<UINT> event_message_{kStandardEventMessage};
  std::atomic<bool> event_window_exists_{true};
  std::atomic<std::uint64_t> previous_called_{0};
  HWND dead_window_ = nullptr;  // set before any other thread runs
  AppWindow event_window_;
  mutable std::mutex mutex_;  // guards all below
  std::map<unsigned, std::unique_ptr<NotifyWindow>> windows_;
  std::map<unsigned, HWND> handles_;  // of every window so far, the newest kMostHandles of them
  unsigned last_number_ = kEventWindowNumber;
};

}  // namespace qxsim

#endif
