// Waits that keep a window-owning thread responsive to sent messages.
#include "platform/waiting.h"

#include <stdexcept>

namespace qxcm {

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

WindowSafeLock::WindowSafeLock() : mutex_(CreateMutexW(nullptr, FALSE, nullptr)) {
  if (!mutex_) throw std::runtime_error("Mutex create failed.");
}

void WindowSafeLock::Enter() {
  if (!WaitLettingSentMessagesThrough(mutex_.get(), INFINITE)) throw std::runtime_error("Mutex wait failed.");
}

void WindowSafeLock::Leave() { ReleaseMutex(mutex_.get()); }

}  // namespace qxcm
