// The registry's content on this host: keys of the system's registry.
#include "common/registry/registry_store.h"

#include <iterator>
#include <mutex>
#include <optional>

#include "windows/registry/private_key.h"
#include "windows/registry/registry_lock.h"
#include "windows/registry/system_keys.h"

namespace host {

std::shared_mutex& RegistryLock() {
  static auto* lock = new std::shared_mutex;  // calls may still come while the process ends
  return *lock;
}

namespace {

// What this process has last stored: nobody else changes its keys, and reading them all takes long. Nothing: they are
// to be read.
std::optional<RegistryContent>& LastStored() {
  static auto* last = new std::optional<RegistryContent>;
  return *last;
}

DWORD ChangeRoots(const RegistryContent& before, const RegistryContent& after) {
  for (std::size_t place = 0; place < std::size(kRegistryRoots); ++place) {
    const RegistryKey& now = *FindRegistryKey(after, {kRegistryRoots[place]});
    const DWORD error = ChangeSystemKey(SystemRoot(place), *FindRegistryKey(before, {kRegistryRoots[place]}), now);
    if (error != ERROR_SUCCESS) return error;
  }
  return ERROR_SUCCESS;
}

}  // namespace

RegistryContent StoredRegistry() {
  const std::shared_lock<std::shared_mutex> lock(RegistryLock());
  RegistryEdit content(EmptyRegistry());
  for (std::size_t place = 0; place < std::size(kRegistryRoots); ++place) {
    ReadSystemKey(SystemRoot(place), {kRegistryRoots[place]}, &content);
  }
  return content.content();
}

RegistryContent RegistryToChange() {
  if (!LastStored()) LastStored() = StoredRegistry();
  return *LastStored();
}

DWORD StoreRegistry(const RegistryContent& before, const RegistryContent& after) {
  const std::unique_lock<std::shared_mutex> lock(RegistryLock());
  const DWORD error = ChangeRoots(before, after);
  LastStored() = error == ERROR_SUCCESS ? std::optional<RegistryContent>(after) : std::nullopt;
  return error;
}

}  // namespace host
