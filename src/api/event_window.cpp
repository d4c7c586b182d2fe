// Subclassing of the event window.
#include "api/event_window.h"

#include <atomic>

#include "platform/qxsystem.h"

namespace qxcm::event_window {

namespace {

constexpr UINT kLowestMessage = 1024;

// The window's thread may be inside the procedure while another thread installs or removes it, and after a removal a
// message may still be on its way: so the members are atomic, and the previous procedure stays known.
struct State {
  HWND window = nullptr;  // under the lifecycle lock
  std::atomic<UINT> message{0};
  std::atomic<WNDPROC> previous{nullptr};
  std::atomic<Handler> handler{nullptr};
};
State state;

LRESULT CALLBACK EventWindowProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  const Handler handler = state.handler.load(std::memory_order_acquire);
  if (handler != nullptr && message == state.message.load(std::memory_order_relaxed)) {
    handler(static_cast<DWORD>(wparam), lparam);
  }
  const WNDPROC previous = state.previous.load(std::memory_order_acquire);
  return previous == nullptr ? 0 : CallWindowProcW(previous, window, message, wparam, lparam);
}

}  // namespace

bool Install(Handler handler) {
  if (state.window != nullptr) return true;
  HWND window = nullptr;
  UINT message = 0;
  QxSystemGetEventWindow(&window, &message);
  if (IsWindow(window) == FALSE || message < kLowestMessage) return false;
  state.message.store(message, std::memory_order_relaxed);
  state.handler.store(handler, std::memory_order_release);
  const auto current = reinterpret_cast<WNDPROC>(GetWindowLongW(window, kWindowProcedure));
  if (current == nullptr) return false;
  if (current == &EventWindowProc) {  // it could not be put back the last time, and knows what it stands before
    state.window = window;
    return true;
  }
  state.previous.store(current, std::memory_order_release);
  const LONG_PTR replaced = SetWindowLongW(window, kWindowProcedure, reinterpret_cast<LONG_PTR>(&EventWindowProc));
  if (replaced == 0) return false;
  state.window = window;
  return true;
}

void Remove() {
  if (state.window == nullptr) return;
  state.handler.store(nullptr, std::memory_order_release);
  SetWindowLongW(state.window, kWindowProcedure, reinterpret_cast<LONG_PTR>(state.previous.load()));
  state.window = nullptr;
}

}  // namespace qxcm::event_window
