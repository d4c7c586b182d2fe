#include "posix/sync/mutexes.h"

#include <algorithm>
#include <utility>

#include "common/calls/calls.h"
#include "common/calls/errors.h"
#include "common/kernel/handles.h"
#include "common/sync/sync.h"
#include "posix/sync/thread_state.h"

namespace host {
namespace {

MutexState OwnedState(const ThreadState& thread, std::uint32_t process) {
  MutexState state;
  state.count = 1;
  state.process = process;
  state.thread = thread.id;
  state.in_library_call = InLibraryCall();
  return state;
}

// A new named mutex has its first owner before any other process can see it.
std::unique_ptr<NamedObject> OpenNamedMutex(LPCWSTR name, ThreadState* owner) {
  return NamedObject::Open(name, ObjectKind::kMutex, [&](ObjectSlot& slot, const ObjectNamespace& space) {
    if (owner == nullptr) return;
    slot.mutex = OwnedState(*owner, space.process());
    owner->took_named_mutex = true;
  });
}

}  // namespace

Mutex::Mutex(ThreadState* owner) : state_(own_) {
  KernelLock lock;
  if (owner != nullptr) Own(*owner);
}

Mutex::Mutex(std::unique_ptr<NamedObject> named) : named_(std::move(named)), state_(named_->slot().mutex) {}

Mutex::~Mutex() {
  KernelLock lock;
  Forget();
}

bool Mutex::OwnedBy(const ThreadState& thread) const {
  return state_.count != 0 && state_.process == Process() && state_.thread == thread.id;
}

bool Mutex::Ready(const ThreadState& thread) {
  if (OwnerMayDie()) named_->space().Sweep();
  return state_.count == 0 || OwnedBy(thread);
}

bool Mutex::Take(ThreadState& thread) {
  const bool abandoned = std::exchange(state_.abandoned, false);
  if (state_.count != 0) {
    ++state_.count;
    return abandoned;
  }
  Own(thread);
  return abandoned;
}

void Mutex::Own(ThreadState& thread) {
  state_ = OwnedState(thread, Process());
  if (named_ != nullptr) {
    thread.took_named_mutex = true;
  } else {
    owner_ = &thread;
    thread.owned.push_back(this);
  }
}

bool Mutex::Release(ThreadState& thread) {
  return WithLocks(named_, [&](KernelLock& lock) {
    if (!OwnedBy(thread)) return false;
    if (--state_.count != 0) return true;
    Forget();
    Signal(lock);
    return true;
  });
}

void Mutex::Abandon(KernelLock& lock) {
  Forget();
  state_.abandoned = true;
  state_.count = 0;
  Signal(lock);
}

void Mutex::Forget() {
  if (owner_ == nullptr) return;
  auto& owned = owner_->owned;
  owned.erase(std::find(owned.begin(), owned.end(), this));
  owner_ = nullptr;
}

void AbandonMutexes(ThreadState& thread) {
  const auto space = thread.took_named_mutex ? ObjectNamespace::Current() : nullptr;
  KernelLock lock;
  while (!thread.owned.empty()) thread.owned.back()->Abandon(lock);
  if (space == nullptr) return;
  NamespaceLock space_lock(lock, *space);
  space->AbandonMutexes(space->process(), thread.id);
}

HANDLE CreateMutexW(LPSECURITY_ATTRIBUTES, BOOL initial_owner, LPCWSTR name) {
  ThreadState* owner = initial_owner != FALSE ? &CurrentThread() : nullptr;
  SetLastError(ERROR_SUCCESS);
  if (name == nullptr || *name == 0) return InsertHandle(std::make_shared<Mutex>(owner));
  auto named = OpenNamedMutex(name, owner);
  return named == nullptr ? nullptr : InsertHandle(std::make_shared<Mutex>(std::move(named)));
}

BOOL ReleaseMutex(HANDLE handle) {
  const auto mutex = FindHandle<Mutex>(handle);
  if (mutex == nullptr) return FALSE;
  return mutex->Release(CurrentThread()) ? TRUE : Fail(ERROR_NOT_OWNER, FALSE);
}

}  // namespace host
