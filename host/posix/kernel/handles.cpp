#include "common/kernel/handles.h"

#include <utility>

#include "common/calls/errors.h"
#include "common/kernel/handle_table.h"

namespace host {
namespace {

HandleTable& Table() {
  static auto* table = new HandleTable(0);  // threads may outlive the end of main
  return *table;
}

}  // namespace

HANDLE InsertHandle(std::shared_ptr<KernelObject> object) {
  HANDLE handle = Table().Insert(std::move(object));
  return handle != nullptr ? handle : Fail(ERROR_NOT_ENOUGH_MEMORY, handle);
}

std::shared_ptr<KernelObject> FindObject(HANDLE handle) { return Table().Find(handle); }

std::size_t LibraryHandles() { return Table().library_handles(); }

bool RemoveHandle(HANDLE handle) { return Table().Remove(handle) != nullptr; }

BOOL CloseHandle(HANDLE handle) { return Table().Close(handle); }

}  // namespace host
