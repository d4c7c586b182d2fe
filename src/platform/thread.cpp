// Thread creation, start and joining.
#include "platform/thread.h"

#include <utility>

#include "platform/waiting.h"

namespace qxcm {

namespace {
constexpr DWORD kRetryPause = 5;  // milliseconds
constexpr int kStartAttempts = 10;
constexpr DWORD kRefused = 0xFFFFFFFF;
}  // namespace

bool Thread::Create(std::function<void()> body) {
  body_ = std::move(body);
  finished_.store(false, std::memory_order_relaxed);
  handle_ = Handle(CreateThread(nullptr, 0, &Thread::Run, this, CREATE_SUSPENDED, nullptr));
  if (!handle_) finished_.store(true, std::memory_order_relaxed);
  return created();
}

bool Thread::Start() {
  for (int attempt = 0; attempt < kStartAttempts; ++attempt) {
    if (ResumeThread(handle_.get()) != kRefused) return true;
    Sleep(kRetryPause);
  }
  TerminateThread(handle_.get(), 0);  // it has not run a step yet: nothing is left half-done
  handle_.Close();
  finished_.store(true, std::memory_order_relaxed);
  return false;
}

bool Thread::JoinFor(DWORD milliseconds) {
  if (created() && !WaitLettingSentMessagesThrough(handle_.get(), milliseconds) && !finished()) {
    Sleep(milliseconds == 0 ? 0 : kRetryPause);  // the platform may have refused the wait
    return false;
  }
  handle_.Close();
  body_ = nullptr;
  return true;
}

DWORD WINAPI Thread::Run(LPVOID self) {
  auto* thread = static_cast<Thread*>(self);
  thread->body_();
  thread->finished_.store(true, std::memory_order_release);
  return 0;
}

}  // namespace qxcm
