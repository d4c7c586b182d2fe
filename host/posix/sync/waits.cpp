#include "posix/sync/waits.h"

#include <algorithm>
#include <chrono>

#include "posix/kernel/object_namespace.h"
#include "posix/sync/thread_state.h"

namespace host {
namespace {

// A mutex is given up without a word when its owner's process is killed: waits for such a one look that often.
constexpr std::chrono::milliseconds kOwnerCheck{20};

std::mutex& KernelMutex() {
  static auto* mutex = new std::mutex;  // threads may outlive the end of main
  return *mutex;
}

}  // namespace

KernelLock::KernelLock() : lock_(KernelMutex()) {}

KernelLock::~KernelLock() {
  lock_.unlock();
  for (std::size_t i = 0; i < count_; ++i) FutexWake(to_wake_[i], FutexScope::kProcess);
}

void KernelLock::WakeAfter(const FutexWord* word) {
  if (count_ < to_wake_.size()) {
    to_wake_[count_++] = word;
  } else {
    FutexWake(word, FutexScope::kProcess);
  }
}

bool Waitable::Take(ThreadState&) { return false; }

ObjectNamespace* Waitable::Space() const { return nullptr; }

bool Waitable::OwnerMayDie() const { return false; }

void Waitable::Signal(KernelLock& lock) {
  for (std::size_t i = 0; i < waiters_.size();) {
    Waiter& waiter = *waiters_[i];
    if (waiter.space_ != nullptr) {
      waiter.space_->WakeAll();  // it looks for itself: only its own thread takes named objects
    } else if (waiter.TryComplete()) {
      waiter.Unregister();
      waiter.done_.store(1, std::memory_order_release);
      lock.WakeAfter(&waiter.done_);
      continue;  // the next waiter has moved to this place
    }
    ++i;
  }
}

DWORD Waiter::Wait(bool all, DWORD milliseconds) {
  all_ = all;
  space_ = nullptr;
  for (const auto& object : objects_) {
    if (ObjectNamespace* space = object->Space()) space_ = space;
  }
  const DWORD result = space_ == nullptr ? WaitHere(milliseconds) : WaitAcrossProcesses(*space_, milliseconds);
  objects_.clear();
  return result;
}

DWORD Waiter::WaitHere(DWORD milliseconds) {
  {
    KernelLock lock;
    if (TryComplete()) return result_;
    if (milliseconds == 0) return WAIT_TIMEOUT;
    done_.store(0, std::memory_order_relaxed);
    Register();
  }
  const Deadline deadline = DeadlineAfter(milliseconds);
  while (done_.load(std::memory_order_acquire) == 0) {
    if (FutexWait(done_, 0, deadline, FutexScope::kProcess)) continue;
    KernelLock lock;
    if (done_.load(std::memory_order_relaxed) != 0) break;
    Unregister();
    return WAIT_TIMEOUT;
  }
  return result_;
}

DWORD Waiter::WaitAcrossProcesses(ObjectNamespace& space, DWORD milliseconds) {
  const Deadline deadline = DeadlineAfter(milliseconds);
  for (bool registered = false;; registered = true) {
    std::uint32_t seen = 0;
    Deadline look_again = deadline;
    {
      KernelLock lock;
      NamespaceLock space_lock(lock, space);
      seen = space.changes().load(std::memory_order_relaxed);
      const Deadline now = std::chrono::steady_clock::now();
      const bool complete = TryComplete();
      if (complete || now >= deadline) {
        if (registered) Unregister();
        return complete ? result_ : WAIT_TIMEOUT;
      }
      if (!registered) Register();
      const auto may_die = [](const auto& object) { return object->OwnerMayDie(); };
      if (std::any_of(objects_.begin(), objects_.end(), may_die)) look_again = std::min(deadline, now + kOwnerCheck);
    }
    FutexWait(space.changes(), seen, look_again, FutexScope::kShared);
  }
}

// Takes what satisfies the wait, if anything does, and sets its result.
bool Waiter::TryComplete() {
  const auto ready = [this](const auto& object) { return object->Ready(thread_); };
  if (all_) return std::all_of(objects_.begin(), objects_.end(), ready) && TakeFrom(0, objects_.size());
  const auto first = std::find_if(objects_.begin(), objects_.end(), ready);
  if (first == objects_.end()) return false;
  const auto index = static_cast<std::size_t>(first - objects_.begin());
  return TakeFrom(index, index + 1);
}

bool Waiter::TakeFrom(std::size_t first, std::size_t last) {
  bool abandoned = false;
  for (std::size_t i = first; i < last; ++i) abandoned |= objects_[i]->Take(thread_);
  result_ = (abandoned ? WAIT_ABANDONED_0 : WAIT_OBJECT_0) + static_cast<DWORD>(first);
  return true;
}

// Named objects wake by the word of their namespace.
void Waiter::Register() {
  for (const auto& object : objects_) {
    if (object->Space() == nullptr) object->waiters_.push_back(this);
  }
}

// Takes out all entries of an object that was added twice.
void Waiter::Unregister() {
  for (const auto& object : objects_) {
    auto& waiters = object->waiters_;
    waiters.erase(std::remove(waiters.begin(), waiters.end(), this), waiters.end());
  }
}

}  // namespace host
