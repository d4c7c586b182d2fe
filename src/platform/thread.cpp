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

void Thread::Join() {
  while (created() && !LetGo(WaitForSingleObject(handle_.get(), INFINITE) == WAIT_OBJECT_0)) {
    Sleep(kRetryPause);  // the platform refused the wait
  }
}

bool Thread::JoinLettingSentMessagesThrough(DWORD milliseconds) {
  if (!created() || LetGo(qxcm::WaitLettingSentMessagesThrough(handle_.get(), milliseconds))) return true;
  if (milliseconds != 0) Sleep(1);  // no spinning should the platform have refused the wait
  return false;
}

/// A body that has returned counts, whatever the wait for the thread said.
bool Thread::LetGo(bool ended) {
  if (!ended && !finished()) return false;
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
