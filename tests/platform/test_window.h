// Windows that tell a test which messages they got.
#ifndef QXTEST_PLATFORM_TEST_WINDOW_H
#define QXTEST_PLATFORM_TEST_WINDOW_H

#include <functional>
#include <memory>
#include <vector>

#include "kernel_objects.h"

namespace platform_test {

/// A message-only window of the thread that makes it.
class TestWindow {
 public:
  /// Gets every message from WM_APP on and WM_DESTROY; by default keeps them and answers 0.
  using Handler = std::function<LRESULT(UINT message, WPARAM wparam, LPARAM lparam)>;
  explicit TestWindow(Handler handler = nullptr);
  TestWindow(const TestWindow&) = delete;
  TestWindow& operator=(const TestWindow&) = delete;
  ~TestWindow();
  HWND handle() const { return handle_; }
  /// Messages kept, in the order they were handled.
  const std::vector<UINT>& messages() const { return messages_; }

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
  static ATOM Class();

  const Handler handler_;
  std::vector<UINT> messages_;
  HWND handle_;
};

/// A thread with a window that handles messages until the window gets kStop; joined by the destructor.
class WindowThread {
 public:
  static constexpr UINT kStop = WM_APP + 0x3FFF;
  explicit WindowThread(TestWindow::Handler handler);
  ~WindowThread() { Stop(); }
  HWND window() const { return window_; }
  DWORD id() const { return thread_->id(); }
  void Stop();

 private:
  DWORD Run(const TestWindow::Handler& handler);

  const Handle ready_ = ManualEvent();
  HWND window_ = nullptr;  // written before ready_ is set
  std::unique_ptr<TestThread> thread_;
};

/// Handles the calling thread's messages that are there now.
void HandleMessages();

}  // namespace platform_test

#endif
