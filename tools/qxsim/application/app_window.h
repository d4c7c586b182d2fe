// One window of the application, with a thread of its own that handles its messages.
#ifndef QXSIM_APPLICATION_APP_WINDOW_H
#define QXSIM_APPLICATION_APP_WINDOW_H

#include <windows.h>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <thread>

namespace qxsim {

struct WindowMessage {
  UINT message = 0;
  WPARAM wparam = 0;
  LPARAM lparam = 0;
  bool sent = false;    ///< else posted
  std::uint64_t n = 0;  ///< taken when it was posted or sent
};

/// The window lives as long as the object. The object belongs to one owner; WaitUntilIdle may be called on any thread.
class AppWindow {
 public:
  /// Handles a message on the window's thread; what it returns goes to the sender.
  using Handler = std::function<LRESULT(const WindowMessage&)>;

  /// Throws std::runtime_error when no window can be made.
  explicit AppWindow(Handler handler);
  AppWindow(const AppWindow&) = delete;
  AppWindow& operator=(const AppWindow&) = delete;
  /// Destroys the window once it has handled the message it is at.
  ~AppWindow();

  HWND handle() const { return handle_; }

  /// True when everything posted to the window before this call has been handled; false when the time is over first.
  bool WaitUntilIdle(std::chrono::milliseconds time);

  /// True while another procedure stands before the window's own.
  bool Subclassed() const;

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam);

  void Run();
  LRESULT Handle(UINT message, WPARAM wparam, LPARAM lparam);
  void Report(std::uint64_t* value, std::uint64_t to);

  const Handler handler_;
  HWND handle_ = nullptr;     // set before the constructor returns
  bool dispatching_ = false;  // the window's thread only: a posted message is about to reach the procedure
  std::mutex mutex_;          // guards the three below
  std::condition_variable changed_;
  std::uint64_t started_ = 0;
  std::uint64_t marks_posted_ = 0;
  std::uint64_t marks_seen_ = 0;
  std::thread thread_;
};

}  // namespace qxsim

#endif
