#include "test_window.h"

namespace platform_test {

namespace {
constexpr int kUserData = -21;
}

TestWindow::TestWindow(Handler handler) : handler_(std::move(handler)) {
  static const ATOM window_class = Class();
  handle_ = CreateWindowExW(0, reinterpret_cast<LPCWSTR>(static_cast<ULONG_PTR>(window_class)), TEXT(""), 0, 0, 0, 0, 0,
                            HWND_MESSAGE, nullptr, nullptr, nullptr);
  SetWindowLongW(handle_, kUserData, reinterpret_cast<LONG_PTR>(this));
}

TestWindow::~TestWindow() {
  SetWindowLongW(handle_, kUserData, 0);
  DestroyWindow(handle_);
}

ATOM TestWindow::Class() {
  WNDCLASSW window_class = {};
  window_class.lpfnWndProc = Procedure;
  window_class.lpszClassName = TEXT("QX-TEST.window");
  return RegisterClassW(&window_class);
}

LRESULT CALLBACK TestWindow::Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  auto* self = reinterpret_cast<TestWindow*>(GetWindowLongW(window, kUserData));
  if (self == nullptr || (message < WM_APP && message != WM_DESTROY)) {
    return DefWindowProcW(window, message, wparam, lparam);
  }
  if (self->handler_) return self->handler_(message, wparam, lparam);
  self->messages_.push_back(message);
  return 0;
}

WindowThread::WindowThread(TestWindow::Handler handler)
    : thread_(std::make_unique<TestThread>([this, handler] { return Run(handler); })) {
  Wait(ready_);
}

DWORD WindowThread::Run(const TestWindow::Handler& handler) {
  const TestWindow window([&](UINT message, WPARAM wparam, LPARAM lparam) -> LRESULT {
    if (message == kStop) PostQuitMessage(0);
    return message == kStop || message == WM_DESTROY ? 0 : handler(message, wparam, lparam);
  });
  window_ = window.handle();
  Set(ready_);
  MSG message;
  while (GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
  return 0;
}

void WindowThread::Stop() {
  PostMessageW(window_, kStop, 0, 0);
  thread_->Join();
}

void HandleMessages() {
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) DispatchMessageW(&message);
}

}  // namespace platform_test
