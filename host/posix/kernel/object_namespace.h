// The file that the processes of one virtual instrument map: its named objects, who holds them, and one word on which
// waits for them block.
//
// A robust lock between processes guards it; it is taken with the kernel lock held. Every intermediate state is a valid
// one, so a process may be killed at any moment: what it held is given up by the next process that looks.
#ifndef QXHOST_POSIX_KERNEL_OBJECT_NAMESPACE_H
#define QXHOST_POSIX_KERNEL_OBJECT_NAMESPACE_H

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "posix/kernel/namespace_file.h"
#include "posix/sync/waits.h"

namespace host {

class ObjectNamespace {
 public:
  /// The namespace in use; made by the first call. Throws std::system_error.
  static std::shared_ptr<ObjectNamespace> Current();

  /// Maps the folder's file, made if missing, and enters this process. Throws std::system_error.
  explicit ObjectNamespace(std::string directory);
  ~ObjectNamespace();

  const std::string& directory() const { return directory_; }
  /// Counts every change of a named object.
  const FutexWord& changes() const { return file_->changes; }
  /// Makes every wait in the namespace look again.
  void WakeAll();

  // The rest is called with both locks held, see NamespaceLock.

  /// This process's number in MutexState; never 0.
  std::uint32_t process() const { return process_ + 1; }
  NamespaceFile& file() { return *file_; }
  /// The object of that name, or null: one that only dead processes held is gone, one that has no handle has no name.
  ObjectSlot* Find(std::u16string_view name);
  /// A fresh, unnamed slot, or null when all are in use.
  ObjectSlot* FreeSlot();
  /// A handle has been made for the object; it has gone; and what has been kept of the object since then has.
  void Open(ObjectSlot& slot);
  void Close(ObjectSlot& slot);
  void Release(ObjectSlot& slot);
  bool holds_any() const;
  /// Frees what dead processes have left behind: their objects and their mutexes.
  void Sweep();
  /// Gives up the mutexes of one thread, or of all threads (0), of a process.
  void AbandonMutexes(std::uint32_t process, std::uint32_t thread);

 private:
  friend class NamespaceLock;
  void EnterProcess();
  bool OpenHere(const ObjectSlot& slot) const { return (slot.openers >> process_ & 1) != 0; }

  const std::string directory_;
  NamespaceFile* file_ = nullptr;
  std::uint32_t process_ = 0;            // this process's entry
  unsigned holds_[kMostNamedObjects]{};  // how many objects of this process refer to each slot
  unsigned opens_[kMostNamedObjects]{};  // how many of them have a handle
  bool changed_ = false;                 // since the lock was taken
};

/// Holds the namespace's lock; announces the changes made under it.
class NamespaceLock {
 public:
  NamespaceLock(const KernelLock&, ObjectNamespace& space);
  NamespaceLock(const NamespaceLock&) = delete;
  NamespaceLock& operator=(const NamespaceLock&) = delete;
  ~NamespaceLock();
  /// Waits for named objects shall look again.
  void Changed() { space_.changed_ = true; }

 private:
  ObjectNamespace& space_;
};

}  // namespace host

#endif
