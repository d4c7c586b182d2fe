#include "qxsim/application/app_window.h"

#include <stdexcept>
#include <utility>

#include "common/windows/windows_messages.h"

namespace qxsim {
namespace {

// Messages of the window to itself: below the range that applications register, above what the system library uses,
// and told from a stranger's by the object's address in wParam.
constexpr int kWindowProcedure = -4;  // its index
constexpr UINT kEnd = 0x7F00;
constexpr UINT kMark = 0x7F01;

thread_local AppWindow* current = nullptr;

ATOM WindowClass(WNDPROC procedure) {
  static const ATOM atom = [procedure] {
    WNDCLASSW description = {};
    description.lpfnWndProc = procedure;
    description.lpszClassName = TEXT("QxSimApplication");
    return host::RegisterClassW(&description);
  }();
  return atom;
}

}  // namespace

AppWindow::AppWindow(Handler handler) : handler_(std::move(handler)) {
  thread_ = std::thread([this] { Run(); });
  std::unique_lock<std::mutex> lock(mutex_);
  changed_.wait(lock, [this] { return started_ != 0; });
  if (handle_ != nullptr) return;
  lock.unlock();
  thread_.join();
  throw std::runtime_error("no window can be made");
}

AppWindow::~AppWindow() {
  // The queue may be full for a moment.
  while (host::IsWindow(handle_) && !host::PostMessageW(handle_, kEnd, reinterpret_cast<WPARAM>(this), 0)) {
    WaitUntilIdle(std::chrono::milliseconds(10));
  }
  thread_.join();
}

bool AppWindow::WaitUntilIdle(std::chrono::milliseconds time) {
  const auto deadline = std::chrono::steady_clock::now() + time;
  std::unique_lock<std::mutex> lock(mutex_);
  const std::uint64_t mark = ++marks_posted_;
  lock.unlock();
  const bool posted = host::PostMessageW(handle_, kMark, reinterpret_cast<WPARAM>(this), static_cast<LPARAM>(mark));
  lock.lock();
  const bool seen = changed_.wait_until(lock, deadline, [this, mark] { return marks_seen_ >= mark; });
  return posted && seen;
}

bool AppWindow::Subclassed() const {
  return host::IsWindow(handle_) &&
         host::GetWindowLongW(handle_, kWindowProcedure) != reinterpret_cast<LONG_PTR>(Procedure);
}

void AppWindow::Report(std::uint64_t* value, std::uint64_t to) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (*value < to) *value = to;
  changed_.notify_all();
}

void AppWindow::Run() {
  current = this;
  const auto name = reinterpret_cast<LPCWSTR>(static_cast<std::uintptr_t>(WindowClass(Procedure)));
  handle_ = host::CreateWindowExW(0, name, nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
  const bool made = handle_ != nullptr;
  Report(&started_, 1);
  if (!made) return;
  MSG message = {};
  while (host::GetMessageW(&message, nullptr, 0, 0) > 0) {
    dispatching_ = true;
    host::DispatchMessageW(&message);
    dispatching_ = false;
  }
}

LRESULT CALLBACK AppWindow::Procedure(HWND, UINT message, WPARAM wparam, LPARAM lparam) {
  return current->Handle(message, wparam, lparam);
}

LRESULT AppWindow::Handle(UINT message, WPARAM wparam, LPARAM lparam) {
  // The first call after dispatching begins is the posted message; any deeper one was sent meanwhile.
  const bool sent = !std::exchange(dispatching_, false);
  const bool own = wparam == reinterpret_cast<WPARAM>(this);
  if (own && message == kMark) {
    Report(&marks_seen_, static_cast<std::uint64_t>(lparam));
  } else if (own && message == kEnd) {
    host::DestroyWindow(handle_);
    host::PostQuitMessage(0);
  } else if (message != WM_DESTROY) {
    return handler_({message, wparam, lparam, sent, host::MessageNumber()});
  }
  return 0;
}

}  // namespace qxsim
