#include "instrument/event_window.h"

#include <mutex>

#include "common/calls/entry.h"
#include "common/sync/threads.h"
#include "common/windows/windows_messages.h"

namespace host::instrument {
namespace {

constexpr int kGetEventWindow = 63;

struct EventWindow {
  HWND window = nullptr;
  UINT message = 0;
};

std::mutex mutex;  // guards the two below
EventWindow named;
EventWindow handed_out;

EventWindow HandedOut() {
  const std::lock_guard<std::mutex> lock(mutex);
  return handed_out;
}

std::int32_t HandOut(HWND* window, UINT* message) {
  const std::lock_guard<std::mutex> lock(mutex);
  if (named.window == nullptr || window == nullptr || message == nullptr) return -1;
  handed_out = named;
  *window = named.window;
  *message = named.message;
  return 0;
}

}  // namespace

void SetEventWindow(HWND window, UINT message) {
  const std::lock_guard<std::mutex> lock(mutex);
  named = {window, message};
}

bool DeliverEvents(std::uint32_t mask) {
  const EventWindow to = HandedOut();
  if (!host::IsWindow(to.window)) return false;
  host::SendMessageW(to.window, to.message, mask, 0);
  return true;
}

bool IsEventWindowThread() {
  const DWORD thread = host::GetWindowThreadProcessId(HandedOut().window, nullptr);
  return thread != 0 && thread == host::GetCurrentThreadId();
}

UINT EventMessage() { return HandedOut().message; }

void ResetEventWindow() {
  const std::lock_guard<std::mutex> lock(mutex);
  named = {};
  handed_out = {};
}

}  // namespace host::instrument

std::int32_t WINAPI QxSystemGetEventWindow(HWND* window, UINT* message) {
  return host::Entry(
      "QxSystem", host::instrument::kGetEventWindow, true, [] { return host::CallValues(); },
      [window, message] { return host::instrument::HandOut(window, message); }, host::FailsWith::kMinusOne);
}
