#include "common/kernel/handle_table.h"

#include <utility>

#include "common/calls/calls.h"
#include "common/calls/errors.h"

namespace host {
namespace {

constexpr unsigned kEntryShift = 2;
constexpr std::uint32_t kMostEntries = 0xFFFF;
constexpr unsigned kUseShift = 18;
constexpr std::uint32_t kUseMask = 0xFFF;

}  // namespace

HANDLE HandleTable::Insert(std::shared_ptr<KernelObject> object) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (free_.empty()) {
    if (entries_.size() == kMostEntries) return nullptr;
    free_.push_back(static_cast<std::uint32_t>(entries_.size()));
    entries_.emplace_back();
  }
  const std::uint32_t index = free_.front();
  free_.pop_front();
  Entry& entry = entries_[index];
  entry.object = std::move(object);
  entry.librarys = InLibraryCall();
  library_handles_ += entry.librarys ? 1 : 0;
  return reinterpret_cast<HANDLE>(Value(index));
}

std::shared_ptr<KernelObject> HandleTable::Find(HANDLE handle) {
  const std::lock_guard<std::mutex> lock(mutex_);
  Entry* entry = Lookup(handle);
  return entry == nullptr ? nullptr : entry->object;
}

std::shared_ptr<KernelObject> HandleTable::Remove(HANDLE handle) {
  const std::lock_guard<std::mutex> lock(mutex_);
  Entry* entry = Lookup(handle);
  if (entry == nullptr) return nullptr;
  library_handles_ -= entry->librarys ? 1 : 0;
  entry->uses = (entry->uses + 1) & kUseMask;
  free_.push_back(static_cast<std::uint32_t>(entry - entries_.data()));
  return std::move(entry->object);
}

// A handle's value is not given out again soon: what is found here is what is removed, or nothing is.
BOOL HandleTable::Close(HANDLE handle) {
  auto object = Find(handle);
  if (object == nullptr || !object->EndsWithCloseHandle()) return Fail(ERROR_INVALID_HANDLE, FALSE);
  if (!object->Closes()) return FALSE;
  object.reset();  // the object shall end with its handle
  return Remove(handle) != nullptr ? TRUE : Fail(ERROR_INVALID_HANDLE, FALSE);
}

std::size_t HandleTable::library_handles() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return library_handles_;
}

std::uintptr_t HandleTable::Value(std::uint32_t index) const {
  return mark_ | (std::uintptr_t{entries_[index].uses} << kUseShift) | (std::uintptr_t{index + 1} << kEntryShift);
}

// With the lock held.
HandleTable::Entry* HandleTable::Lookup(HANDLE handle) {
  const auto value = reinterpret_cast<std::uintptr_t>(handle);
  const auto number = static_cast<std::uint32_t>((value >> kEntryShift) & kMostEntries);
  if (number == 0 || number > entries_.size()) return nullptr;
  Entry& entry = entries_[number - 1];
  return entry.object != nullptr && Value(number - 1) == value ? &entry : nullptr;
}

}  // namespace host
