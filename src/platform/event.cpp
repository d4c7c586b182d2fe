// Manual-reset events and the wait for two of them.
#include "platform/event.h"

#include <stdexcept>

namespace qxcm {

namespace {
constexpr DWORD kRetryPause = 5;  // milliseconds
}

Event::Event(LPCWSTR name) : handle_(CreateEventW(nullptr, TRUE, FALSE, name)) {
  if (!handle_) throw std::runtime_error("Event create failed.");
}

void Event::Set() {
  set_.store(true, std::memory_order_release);
  EventModify(handle_.get(), kEventSet);
}

void Event::Reset() {
  set_.store(false, std::memory_order_release);
  EventModify(handle_.get(), kEventReset);
}

Woken WaitForEither(const Event& first, const Event& second) {
  const HANDLE handles[] = {first.handle(), second.handle()};
  switch (WaitForMultipleObjects(2, handles, FALSE, INFINITE)) {
    case WAIT_OBJECT_0:
    case WAIT_ABANDONED_0:
      return Woken::kFirst;
    case WAIT_OBJECT_0 + 1:
    case WAIT_ABANDONED_0 + 1:
      return Woken::kSecond;
    default:
      Sleep(kRetryPause);
      return first.WasSet() ? Woken::kFirst : Woken::kNeither;
  }
}

}  // namespace qxcm
