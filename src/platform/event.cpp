// Manual-reset events and waits for them.
#include "platform/event.h"

#include <stdexcept>

namespace qxcm {

namespace {
constexpr DWORD kLookAgain = 500;  // milliseconds, should the platform have refused to set an event
constexpr DWORD kRetryPause = 5;   // milliseconds after a refusal
constexpr int kModifyAttempts = 3;
}  // namespace

Event::Event(LPCWSTR name) : handle_(CreateEventW(nullptr, TRUE, FALSE, name)) {
  if (!handle_) throw std::runtime_error("Event create failed.");
}

void Event::Set() {
  set_.store(true, std::memory_order_release);
  Modify(kEventSet);
}

void Event::Reset() {
  set_.store(false, std::memory_order_release);
  Modify(kEventReset);
}

void Event::Modify(DWORD function) {
  for (int attempt = 0; EventModify(handle_.get(), function) == FALSE && attempt < kModifyAttempts; ++attempt) {
    Sleep(kRetryPause);
  }
}

Woken WaitForEither(const Event& first, const Event& second) {
  const HANDLE handles[] = {first.handle(), second.handle()};
  switch (WaitForMultipleObjects(2, handles, FALSE, kLookAgain)) {
    case WAIT_OBJECT_0:
    case WAIT_ABANDONED_0:
      return Woken::kFirst;
    case WAIT_OBJECT_0 + 1:
    case WAIT_ABANDONED_0 + 1:
      return first.WasSet() ? Woken::kFirst : Woken::kSecond;  // the platform may have refused to set the first
    case WAIT_TIMEOUT:
      break;
    default:
      Sleep(kRetryPause);
  }
  return first.WasSet() ? Woken::kFirst : second.WasSet() ? Woken::kSecond : Woken::kNeither;
}

bool WaitFor(const Event& event, DWORD milliseconds) {
  if (event.WasSet()) return true;
  const DWORD result = WaitForSingleObject(event.handle(), milliseconds);
  if (result == WAIT_FAILED) Sleep(kRetryPause);
  return result == WAIT_OBJECT_0 || event.WasSet();
}

}  // namespace qxcm
