// The one kind of object that can be waited for, and the one wait.
//
// A single lock of the process guards the state of every waitable object. Whoever makes an object ready completes,
// under that lock, the waits it satisfies: it takes the objects in the waiting thread's name and wakes it, so that the
// woken thread needs no lock. A wait in which a named object takes part blocks on the word that all processes of the
// namespace share instead, and looks again whenever anything there has changed (object_namespace.h).
#ifndef QXHOST_POSIX_SYNC_WAITS_H
#define QXHOST_POSIX_SYNC_WAITS_H

#include <windows.h>

#include <array>
#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

#include "common/kernel/handles.h"
#include "posix/sync/futex.h"

namespace host {

class ObjectNamespace;
class Waiter;
struct ThreadState;

/// Holds the kernel lock; wakes threads after it has been released.
class KernelLock {
 public:
  KernelLock();
  KernelLock(const KernelLock&) = delete;
  KernelLock& operator=(const KernelLock&) = delete;
  ~KernelLock();

  void WakeAfter(const FutexWord* word);

 private:
  std::unique_lock<std::mutex> lock_;
  std::array<const FutexWord*, 8> to_wake_;
  std::size_t count_ = 0;
};

/// Its members are called with the kernel lock held and, for a named object, its namespace's lock.
class Waitable : public KernelObject {
 public:
  /// Whether a wait of this thread for this object is over.
  virtual bool Ready(const ThreadState& thread) = 0;

  /// What such a wait does to the object. True when the object was abandoned by its last owner.
  virtual bool Take(ThreadState& thread);

  /// The namespace of a named object; null for all others.
  virtual ObjectNamespace* Space() const;

  /// True while it may become ready without a word: the process that keeps it from being so may be killed.
  virtual bool OwnerMayDie() const;

  /// To be called when the object may have become ready: completes waits for it, the oldest first.
  void Signal(KernelLock& lock);

 private:
  friend class Waiter;
  std::vector<Waiter*> waiters_;  // guarded by the kernel lock
};

/// One thread's wait. Used by its own thread only, except for what Signal does under the kernel lock.
class Waiter {
 public:
  explicit Waiter(ThreadState& thread) : thread_(thread) {}

  /// Adds an object to the next wait. The same object may be added more than once.
  void Add(std::shared_ptr<Waitable> object) { objects_.push_back(std::move(object)); }
  void Clear() { objects_.clear(); }

  /// Waits for one or all of the objects added and forgets them. WAIT_OBJECT_0 + index, WAIT_ABANDONED_0 + index or
  /// WAIT_TIMEOUT.
  DWORD Wait(bool all, DWORD milliseconds);

 private:
  friend class Waitable;
  DWORD WaitHere(DWORD milliseconds);
  DWORD WaitAcrossProcesses(ObjectNamespace& space, DWORD milliseconds);
  bool TryComplete();
  bool TakeFrom(std::size_t first, std::size_t last);
  void Register();
  void Unregister();

  ThreadState& thread_;
  std::vector<std::shared_ptr<Waitable>> objects_;
  bool all_ = false;
  ObjectNamespace* space_ = nullptr;  // where the wait blocks when a named object takes part
  DWORD result_ = 0;
  FutexWord done_{0};
};

}  // namespace host

#endif
