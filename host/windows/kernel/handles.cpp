// Handles: the system's own for what the system offers, and the host's for what it adds, such as open devices.
#include "common/kernel/handles.h"

#include <utility>

#include "common/calls/errors.h"
#include "common/kernel/handle_table.h"
#include "windows/kernel/named_mutexes.h"
#include "windows/kernel/real_handles.h"
#include "windows/sync/thread_table.h"

namespace host {
namespace {

// The system counts its handles from 4 on and never gets there.
constexpr std::uintptr_t kHostsOwn = 0x40000000;

HandleTable& Table() {
  static auto* table = new HandleTable(kHostsOwn);  // threads may outlive the end of main
  return *table;
}

}  // namespace

HANDLE InsertHandle(std::shared_ptr<KernelObject> object) {
  HANDLE handle = Table().Insert(std::move(object));
  return handle != nullptr ? handle : Fail(ERROR_NOT_ENOUGH_MEMORY, handle);
}

std::shared_ptr<KernelObject> FindObject(HANDLE handle) { return Table().Find(handle); }

std::size_t LibraryHandles() { return Table().library_handles() + LibraryRealHandles(); }

bool RemoveHandle(HANDLE handle) { return Table().Remove(handle) != nullptr; }

// What is noted of a handle goes first: its value may be another's as soon as it has been closed.
BOOL CloseHandle(HANDLE handle) {
  if (Table().Find(handle) != nullptr) return Table().Close(handle);
  if (handle == INVALID_HANDLE_VALUE) return Fail(ERROR_INVALID_HANDLE, FALSE);  // the system's name of this process
  ForgetHandle(handle);
  ForgetMutexHandle(handle);
  ForgetThreadHandle(handle);
  return ::CloseHandle(handle);
}

}  // namespace host
