// A host's own kernel objects by their handles.
#ifndef QXHOST_COMMON_KERNEL_HANDLE_TABLE_H
#define QXHOST_COMMON_KERNEL_HANDLE_TABLE_H

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <vector>

#include "common/kernel/handles.h"

namespace host {

/// Any thread. A handle's value is, from its low bits: 2 zero bits, 16 bits for the entry's number from 1, 12 bits for
/// how often the entry has been used; and the mark of the table above.
class HandleTable {
 public:
  /// \param mark  0, or bit 30: no handle without it names anything in this table
  explicit HandleTable(std::uintptr_t mark) : mark_(mark) {}

  /// A new handle, counted as the library's inside one of its calls; null when there are too many.
  HANDLE Insert(std::shared_ptr<KernelObject> object);

  std::shared_ptr<KernelObject> Find(HANDLE handle);

  /// Takes the handle away. Returns the object, so that it ends without the table's lock.
  std::shared_ptr<KernelObject> Remove(HANDLE handle);

  /// What CloseHandle does for one of these.
  BOOL Close(HANDLE handle);

  std::size_t library_handles();

 private:
  struct Entry {
    std::shared_ptr<KernelObject> object;
    std::uint32_t uses = 0;
    bool librarys = false;
  };

  std::uintptr_t Value(std::uint32_t index) const;
  Entry* Lookup(HANDLE handle);

  const std::uintptr_t mark_;
  std::mutex mutex_;  // guards all below
  std::vector<Entry> entries_;
  std::deque<std::uint32_t> free_;  // entries, the longest unused first
  std::size_t library_handles_ = 0;
};

}  // namespace host

#endif
