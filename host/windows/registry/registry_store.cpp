// The registry's content on this host: keys of the system's registry.
#include "common/registry/registry_store.h"

#include <iterator>
#include <mutex>

#include "windows/registry/private_key.h"
#include "windows/registry/registry_lock.h"
#include "windows/registry/system_keys.h"

namespace host {

std::shared_mutex& RegistryLock() {
  static auto* lock = new std::shared_mutex;  // calls may still come while the process ends
  return *lock;
}

RegistryContent StoredRegistry() {
  const std::shared_lock<std::shared_mutex> lock(RegistryLock());
  RegistryEdit content(EmptyRegistry());
  for (std::size_t place = 0; place < std::size(kRegistryRoots); ++place) {
    ReadSystemKey(SystemRoot(place), {kRegistryRoots[place]}, &content);
  }
  return content.content();
}

DWORD StoreRegistry(const RegistryContent& before, const RegistryContent& after) {
  const std::unique_lock<std::shared_mutex> lock(RegistryLock());
  for (std::size_t place = 0; place < std::size(kRegistryRoots); ++place) {
    const RegistryPath path = {kRegistryRoots[place]};
    const DWORD error =
        ChangeSystemKey(SystemRoot(place), *FindRegistryKey(before, path), *FindRegistryKey(after, path));
    if (error != ERROR_SUCCESS) return error;
  }
  return ERROR_SUCCESS;
}

}  // namespace host
