#include "common/kernel/handles.h"

#include <cstdint>
#include <deque>
#include <mutex>
#include <utility>
#include <vector>

#include "common/calls/calls.h"
#include "common/calls/errors.h"

namespace host {
namespace {

// A handle, from its low bits: 2 zero bits, the entry's number from 1, and how often the entry has been used.
constexpr unsigned kEntryShift = 2;
constexpr std::uint32_t kMostEntries = 0xFFFF;
constexpr unsigned kUseShift = 18;
constexpr std::uint32_t kUseMask = 0x1FFF;

struct Entry {
  std::shared_ptr<KernelObject> object;
  std::uint32_t uses = 0;
  bool librarys = false;
};

class HandleTable {
 public:
  HANDLE Insert(std::shared_ptr<KernelObject> object) {
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

  std::shared_ptr<KernelObject> Find(HANDLE handle) {
    const std::lock_guard<std::mutex> lock(mutex_);
    Entry* entry = Lookup(handle);
    return entry == nullptr ? nullptr : entry->object;
  }

  /// Returns the object, so that it ends when the lock has been released.
  std::shared_ptr<KernelObject> Remove(HANDLE handle) {
    const std::lock_guard<std::mutex> lock(mutex_);
    Entry* entry = Lookup(handle);
    if (entry == nullptr) return nullptr;
    library_handles_ -= entry->librarys ? 1 : 0;
    entry->uses = (entry->uses + 1) & kUseMask;
    free_.push_back(static_cast<std::uint32_t>(entry - entries_.data()));
    return std::move(entry->object);
  }

  std::size_t library_handles() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return library_handles_;
  }

 private:
  std::uintptr_t Value(std::uint32_t index) const {
    return (std::uintptr_t{entries_[index].uses} << kUseShift) | (std::uintptr_t{index + 1} << kEntryShift);
  }

  Entry* Lookup(HANDLE handle) {
    const auto value = reinterpret_cast<std::uintptr_t>(handle);
    const auto number = static_cast<std::uint32_t>((value >> kEntryShift) & kMostEntries);
    if (number == 0 || number > entries_.size()) return nullptr;
    Entry& entry = entries_[number - 1];
    return entry.object != nullptr && Value(number - 1) == value ? &entry : nullptr;
  }

  std::mutex mutex_;
  std::vector<Entry> entries_;
  std::deque<std::uint32_t> free_;  // entries, the longest unused first
  std::size_t library_handles_ = 0;
};

HandleTable& TheHandles() {
  static auto* table = new HandleTable;  // threads may outlive the end of main
  return *table;
}

}  // namespace

HANDLE InsertHandle(std::shared_ptr<KernelObject> object) {
  HANDLE handle = TheHandles().Insert(std::move(object));
  return handle != nullptr ? handle : Fail(ERROR_NOT_ENOUGH_MEMORY, handle);
}

std::shared_ptr<KernelObject> FindObject(HANDLE handle) { return TheHandles().Find(handle); }

std::size_t LibraryHandles() { return TheHandles().library_handles(); }

bool RemoveHandle(HANDLE handle) { return TheHandles().Remove(handle) != nullptr; }

// A handle's value is not given out again soon: what is found here is what is removed, or nothing is.
BOOL CloseHandle(HANDLE handle) {
  auto object = FindObject(handle);
  if (object == nullptr || !object->EndsWithCloseHandle()) return Fail(ERROR_INVALID_HANDLE, FALSE);
  if (!object->Closes()) return FALSE;
  object.reset();  // the object shall end with its handle
  return RemoveHandle(handle) ? TRUE : Fail(ERROR_INVALID_HANDLE, FALSE);
}

}  // namespace host
