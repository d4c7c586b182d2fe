// Mutexes: owned by a thread, taken again by their owner, abandoned when it ends.
#ifndef QXHOST_POSIX_SYNC_MUTEXES_H
#define QXHOST_POSIX_SYNC_MUTEXES_H

#include <memory>

#include "posix/kernel/named_object.h"
#include "posix/sync/waits.h"

namespace host {

class Mutex final : public Waitable {
 public:
  /// An unnamed mutex, owned by a thread or by none (null).
  explicit Mutex(ThreadState* owner);
  explicit Mutex(std::unique_ptr<NamedObject> named);
  ~Mutex() override;

  bool Ready(const ThreadState& thread) override;
  bool Take(ThreadState& thread) override;
  ObjectNamespace* Space() const override { return named_ != nullptr ? &named_->space() : nullptr; }
  bool OwnerMayDie() const override { return state_.count != 0 && state_.process != Process(); }

  /// False when the thread does not own the mutex.
  bool Release(ThreadState& thread);
  /// Its owner ends: for an unnamed mutex, with the kernel lock held.
  void Abandon(KernelLock& lock);

 private:
  void Own(ThreadState& thread);
  std::uint32_t Process() const { return named_ != nullptr ? named_->space().process() : 0; }
  bool OwnedBy(const ThreadState& thread) const;
  void Forget();

  MutexState own_;
  const std::unique_ptr<NamedObject> named_;
  MutexState& state_;             // guarded by the kernel lock and, for a named mutex, its namespace's
  ThreadState* owner_ = nullptr;  // of an unnamed mutex: lists it; guarded by the kernel lock
};

/// Gives up the mutexes that a thread owns at its end.
void AbandonMutexes(ThreadState& thread);

}  // namespace host

#endif
