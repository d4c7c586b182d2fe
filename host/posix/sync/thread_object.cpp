#include "posix/sync/thread_object.h"

#include <atomic>

#include "common/calls/calls.h"
#include "common/kernel/handles.h"
#include "posix/sync/thread_state.h"

namespace host {
namespace {

constexpr DWORD kStillActive = 259;
constexpr std::uint32_t kRunning = 0;
constexpr std::uint32_t kSuspended = 1;
constexpr std::uint32_t kEndAtOnce = 2;
std::atomic<std::size_t> library_threads{0};

}  // namespace

std::size_t LibraryThreads() { return library_threads.load(); }

Thread::Thread(LPTHREAD_START_ROUTINE start, LPVOID argument, bool suspended)
    : start_(start), argument_(argument), librarys_(InLibraryCall()), suspended_(suspended ? kSuspended : kRunning) {}

// The running thread refers to its object, so the thread has ended or is, in this very call, about to.
Thread::~Thread() {
  if (!started_) return;
  if (pthread_equal(pthread_self(), thread_) != 0) {
    pthread_detach(thread_);
  } else {
    pthread_join(thread_, nullptr);
  }
}

bool Thread::Start(const std::shared_ptr<Thread>& thread) {
  auto reference = std::make_unique<std::shared_ptr<Thread>>(thread);
  if (thread->librarys_) ++library_threads;
  thread->started_ = pthread_create(&thread->thread_, nullptr, Run, reference.get()) == 0;
  if (thread->started_) {
    reference.release();
  } else if (thread->librarys_) {
    --library_threads;
  }
  return thread->started_;
}

void* Thread::Run(void* pointer) {
  const std::unique_ptr<std::shared_ptr<Thread>> reference(static_cast<std::shared_ptr<Thread>*>(pointer));
  ThreadState& state = CurrentThread();
  state.thread = *reference;
  Thread& self = *state.thread;
  self.id_.store(state.id, std::memory_order_release);
  FutexWake(&self.id_, FutexScope::kProcess);
  while (self.suspended_.load(std::memory_order_acquire) == kSuspended) {
    FutexWait(self.suspended_, kSuspended, kNever, FutexScope::kProcess);
  }
  if (self.suspended_.load(std::memory_order_acquire) == kRunning) self.result_ = self.start_(self.argument_);
  return nullptr;
}

DWORD Thread::Resume() {
  std::uint32_t before = kSuspended;
  if (suspended_.compare_exchange_strong(before, kRunning)) FutexWake(&suspended_, FutexScope::kProcess);
  return before == kSuspended ? 1 : 0;
}

bool Thread::EndUnlessResumed(DWORD result) {
  std::uint32_t before = kSuspended;
  if (suspended_.load(std::memory_order_acquire) != kSuspended) return false;
  result_ = result;
  if (!suspended_.compare_exchange_strong(before, kEndAtOnce)) return false;
  FutexWake(&suspended_, FutexScope::kProcess);
  return true;
}

DWORD Thread::Id() const {
  while (id_.load(std::memory_order_acquire) == 0) FutexWait(id_, 0, kNever, FutexScope::kProcess);
  return id_.load(std::memory_order_acquire);
}

DWORD Thread::ExitCode() const {
  KernelLock lock;
  return ended_ ? result_ : kStillActive;
}

void Thread::End() {
  KernelLock lock;
  if (librarys_) --library_threads;
  ended_ = true;
  Signal(lock);
}

}  // namespace host
