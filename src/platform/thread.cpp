// Thread creation, start and joining.
#include "platform/thread.h"

#include <utility>

#include "platform/waiting.h"

namespace qxcm {

namespace {
constexpr DWORD kRetryPause = 5;  // milliseconds
}

bool Thread::Create(std::function<void()> body) {
  body_ = std::move(body);
  finished_.store(false, std::memory_order_relaxed);
  handle_ = Handle(CreateThread(nullptr, 0, &Thread::Run, this, CREATE_SUSPENDED, nullptr));
  if (!handle_) finished_.store(true, std::memory_order_relaxed);
  return created();
}

void Thread::Resume() {
  // A suspended thread could never be joined: resuming is tried until the platform takes it.
  while (ResumeThread(handle_.get()) == 0xFFFFFFFFu) Sleep(kRetryPause);
}

void Thread::Join() {
  if (!created()) return;
  if (!WaitLettingSentMessagesThrough(handle_.get(), INFINITE)) {
    while (!finished()) Sleep(kRetryPause);
  }
  handle_.Close();
  body_ = nullptr;
}

DWORD WINAPI Thread::Run(LPVOID self) {
  auto* thread = static_cast<Thread*>(self);
  thread->body_();
  thread->finished_.store(true, std::memory_order_release);
  return 0;
}

}  // namespace qxcm
