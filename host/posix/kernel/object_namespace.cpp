#include "posix/kernel/object_namespace.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <new>
#include <system_error>
#include <utility>

#include "posix/kernel/processes.h"

namespace host {

ObjectNamespace::ObjectNamespace(std::string directory)
    : directory_(std::move(directory)), file_(MapNamespaceFile(directory_)) {
  EnterProcess();
}

ObjectNamespace::~ObjectNamespace() { UnmapNamespaceFile(file_); }

void ObjectNamespace::EnterProcess() {
  KernelLock kernel_lock;
  NamespaceLock lock(kernel_lock, *this);
  Sweep();
  const auto pid = static_cast<std::uint32_t>(getpid());
  const auto started = ProcessStart(pid);
  if (!started) throw std::system_error(ENOENT, std::generic_category(), "/proc");
  auto* end = std::end(file_->processes);
  auto* entry = std::find_if(file_->processes, end, [&](const auto& used) { return used.pid == pid; });
  if (entry == end) entry = std::find_if(file_->processes, end, [](const auto& used) { return used.pid == 0; });
  if (entry == end) throw std::system_error(EUSERS, std::generic_category(), directory_);
  entry->started = *started;
  entry->pid = pid;
  process_ = static_cast<std::uint32_t>(entry - file_->processes);
}

void ObjectNamespace::WakeAll() {
  file_->changes.fetch_add(1, std::memory_order_release);
  FutexWake(&file_->changes, FutexScope::kShared);
}

ObjectSlot* ObjectNamespace::Find(std::u16string_view name) {
  const auto named = [&](const ObjectSlot& slot) {
    return slot.openers != 0 && std::u16string_view(slot.name, slot.name_length) == name;
  };
  const auto find = [&] { return std::find_if(std::begin(file_->slots), std::end(file_->slots), named); };
  ObjectSlot* slot = find();
  if (slot != std::end(file_->slots) && !OpenHere(*slot)) {  // its openers may all have died
    Sweep();
    slot = find();
  }
  return slot != std::end(file_->slots) ? slot : nullptr;
}

ObjectSlot* ObjectNamespace::FreeSlot() {
  const auto find = [&] {
    return std::find_if(std::begin(file_->slots), std::end(file_->slots),
                        [](const ObjectSlot& slot) { return slot.holders == 0; });
  };
  ObjectSlot* slot = find();
  if (slot == std::end(file_->slots)) {
    Sweep();
    slot = find();
  }
  return slot != std::end(file_->slots) ? new (slot) ObjectSlot{} : nullptr;
}

void ObjectNamespace::Open(ObjectSlot& slot) {
  ++holds_[&slot - file_->slots];
  ++opens_[&slot - file_->slots];
  slot.holders |= std::uint64_t{1} << process_;
  slot.openers |= std::uint64_t{1} << process_;
}

void ObjectNamespace::Close(ObjectSlot& slot) {
  if (--opens_[&slot - file_->slots] == 0) slot.openers &= ~(std::uint64_t{1} << process_);
}

void ObjectNamespace::Release(ObjectSlot& slot) {
  if (--holds_[&slot - file_->slots] == 0) slot.holders &= ~(std::uint64_t{1} << process_);
}

bool ObjectNamespace::holds_any() const {
  return std::any_of(std::begin(holds_), std::end(holds_), [](unsigned holds) { return holds != 0; });
}

void ObjectNamespace::Sweep() {
  for (std::uint32_t i = 0; i < kMostProcesses; ++i) {
    ProcessEntry& entry = file_->processes[i];
    if (i == process_ || entry.pid == 0 || ProcessStart(entry.pid) == entry.started) continue;
    AbandonMutexes(i + 1, 0);
    for (ObjectSlot& slot : file_->slots) {
      slot.openers &= ~(std::uint64_t{1} << i);
      slot.holders &= ~(std::uint64_t{1} << i);
    }
    entry.pid = 0;
  }
}

void ObjectNamespace::AbandonMutexes(std::uint32_t process, std::uint32_t thread) {
  for (ObjectSlot& slot : file_->slots) {
    MutexState& mutex = slot.mutex;
    const bool owned = slot.kind == ObjectKind::kMutex && mutex.count != 0 && mutex.process == process;
    if (!owned || (thread != 0 && mutex.thread != thread)) continue;
    mutex.abandoned = true;
    mutex.count = 0;
    changed_ = true;
  }
}

NamespaceLock::NamespaceLock(const KernelLock&, ObjectNamespace& space) : space_(space) {
  space.changed_ = false;
  const int error = pthread_mutex_lock(&space.file_->lock);
  if (error == 0) return;
  if (error != EOWNERDEAD) throw std::system_error(error, std::generic_category(), space.directory());
  pthread_mutex_consistent(&space.file_->lock);
  space.changed_ = true;  // the dead process may not have come to say so
}

// Woken while the lock is held: should this process be killed in between, the next one that takes the lock wakes them.
NamespaceLock::~NamespaceLock() {
  if (space_.changed_) space_.WakeAll();
  pthread_mutex_unlock(&space_.file_->lock);
}

}  // namespace host
