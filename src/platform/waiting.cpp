// Waits that keep a window-owning thread responsive to sent messages.
#include "platform/waiting.h"

namespace qxcm {

namespace {
constexpr DWORD kLookAgain = 100;  // milliseconds
}

bool WaitLettingSentMessagesThrough(HANDLE object, DWORD milliseconds) {
  const DWORD start = GetTickCount();
  for (;;) {
    const DWORD elapsed = GetTickCount() - start;
    const DWORD left = milliseconds == INFINITE ? INFINITE : elapsed < milliseconds ? milliseconds - elapsed : 0;
    const DWORD result = MsgWaitForMultipleObjectsEx(1, &object, left, QS_SENDMESSAGE, 0);
    if (result != WAIT_OBJECT_0 + 1) return result == WAIT_OBJECT_0 || result == WAIT_ABANDONED_0;
    MSG none;
    PeekMessageW(&none, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);  // handles the sent message inside
  }
}

void WindowSafeLock::Enter() {
  while (!TryEnter()) {
    if (!WaitLettingSentMessagesThrough(free_.handle(), kLookAgain)) Sleep(1);
  }
}

bool WindowSafeLock::TryEnter() {
  const DWORD self = GetCurrentThreadId();
  Guard guard(lock_);
  if (depth_ != 0 && holder_ != self) {
    free_.Reset();
    return false;
  }
  holder_ = self;
  ++depth_;
  return true;
}

void WindowSafeLock::Leave() {
  Guard guard(lock_);
  if (--depth_ != 0) return;
  holder_ = 0;
  free_.Set();
}

}  // namespace qxcm
