#include "common/registry/registry.h"

#include <utility>

#include "common/registry/registry_store.h"

namespace host {

Registry& Registry::Instance() {
  static auto* registry = new Registry;  // calls may still come while the process ends
  return *registry;
}

RegistryContent Registry::Content() const { return StoredRegistry(); }

DWORD Registry::Change(const Edit& edit) {
  const std::lock_guard<std::mutex> one_at_a_time(change_mutex_);
  const RegistryContent before = RegistryToChange();
  RegistryContent after = before;
  if (const DWORD error = edit(&after)) return error;
  if (after.top == before.top) return ERROR_SUCCESS;
  if (after.bytes > kMostRegistryBytes) return ERROR_OUTOFMEMORY;
  if (const DWORD error = keeper_ ? keeper_(after) : ERROR_SUCCESS) return error;
  const DWORD error = StoreRegistry(before, after);
  if (error != ERROR_SUCCESS && keeper_) keeper_(Content());  // what is kept shall be what there is
  return error;
}

DWORD Registry::Replace(const RegistryContent& content) {
  return Change([&](RegistryContent* all) {
    *all = content;
    return DWORD{ERROR_SUCCESS};
  });
}

void Registry::SetKeeper(Keeper keeper) {
  const std::lock_guard<std::mutex> one_at_a_time(change_mutex_);
  keeper_ = std::move(keeper);
}

}  // namespace host
