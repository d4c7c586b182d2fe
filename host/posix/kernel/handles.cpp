#include "common/kernel/handles.h"

#include <utility>

#include "common/calls/errors.h"
#include "common/kernel/handle_table.h"

namespace host {
namespace {

HandleTable& TheHandles() {
  static auto* table = new HandleTable(0);  // threads may outlive the end of main
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

BOOL CloseHandle(HANDLE handle) { return TheHandles().Close(handle); }

}  // namespace host
