// One object's share in a named object.
#ifndef QXHOST_POSIX_KERNEL_NAMED_OBJECT_H
#define QXHOST_POSIX_KERNEL_NAMED_OBJECT_H

#include <windows.h>

#include <functional>
#include <memory>

#include "posix/kernel/object_namespace.h"

namespace host {

/// Holds a named object; the last hold of all processes to go takes the object with it. Its name goes before it, with
/// the last handle.
class NamedObject {
 public:
  /// Opens the object of that name, or makes it with what `fill` puts into its empty slot. Sets the last error: 183
  /// when it existed, else 0. Null: last error 6 (another kind of object), 8 (no room), 31 (no namespace) or 206 (name
  /// too long).
  using Fill = std::function<void(ObjectSlot&, const ObjectNamespace&)>;
  static std::unique_ptr<NamedObject> Open(LPCWSTR name, ObjectKind kind, const Fill& fill);
  NamedObject(std::shared_ptr<ObjectNamespace> space, ObjectSlot& slot);  // used by Open, with both locks held
  NamedObject(const NamedObject&) = delete;
  NamedObject& operator=(const NamedObject&) = delete;
  ~NamedObject();

  /// The object is kept, but no longer by a handle.
  void CloseHandle();

  ObjectNamespace& space() const { return *space_; }
  /// Its state is guarded by both locks.
  ObjectSlot& slot() const { return slot_; }

 private:
  const std::shared_ptr<ObjectNamespace> space_;
  ObjectSlot& slot_;
  bool open_ = true;  // by a handle
};

/// Calls `action` with the kernel lock and, when `named` is not null, its namespace's lock held; a change it makes to
/// the named object is announced.
template <class Action>
auto WithLocks(const std::unique_ptr<NamedObject>& named, Action action) {
  KernelLock lock;
  if (named == nullptr) return action(lock);
  NamespaceLock space_lock(lock, named->space());
  space_lock.Changed();
  return action(lock);
}

}  // namespace host

#endif
