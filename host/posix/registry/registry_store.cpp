// The registry's content on this host: in memory, and nowhere else.
#include "common/registry/registry_store.h"

#include <mutex>

namespace host {
namespace {

struct Store {
  std::mutex mutex;
  RegistryContent content = DefaultRegistry();  // guarded by mutex
};

Store& TheStore() {
  static auto* store = new Store;  // calls may still come while the process ends
  return *store;
}

}  // namespace

RegistryContent StoredRegistry() {
  Store& store = TheStore();
  const std::lock_guard<std::mutex> lock(store.mutex);
  return store.content;
}

RegistryContent RegistryToChange() { return StoredRegistry(); }

DWORD StoreRegistry(const RegistryContent&, const RegistryContent& after) {
  Store& store = TheStore();
  const std::lock_guard<std::mutex> lock(store.mutex);
  store.content = after;
  return ERROR_SUCCESS;
}

}  // namespace host
