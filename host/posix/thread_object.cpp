#include "posix/thread_object.h"

#include <atomic>

#include "posix/calls.h"
#include "posix/handles.h"
#include "posix/thread_state.h"

namespace host {
namespace {

constexpr DWORD kStillActive = 259;
std::atomic<std::size_t> library_threads{0};

}  // namespace

std::size_t LibraryThreads() { return library_threads.load(); }

Thread::Thread(LPTHREAD_START_ROUTINE start, LPVOID argument, bool suspended)
    : start_(start), argument_(argument), librarys_(InLibraryCall()), suspended_(suspended ? 1u : 0u) {}

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
  while (self.suspended_.load(std::memory_order_acquire) != 0) {
    FutexWait(self.suspended_, 1, kNever, FutexScope::kProcess);
  }
  self.result_ = self.start_(self.argument_);
  return nullptr;
}

DWORD Thread::Resume() {
  const DWORD before = suspended_.exchange(0, std::memory_order_acq_rel);
  if (before != 0) FutexWake(&suspended_, FutexScope::kProcess);
  return before;
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
