// The lock on the registry's keys: shared by who looks, held alone while a change is made.
#ifndef QXHOST_WINDOWS_REGISTRY_REGISTRY_LOCK_H
#define QXHOST_WINDOWS_REGISTRY_REGISTRY_LOCK_H

#include <shared_mutex>

namespace host {

std::shared_mutex& RegistryLock();

}  // namespace host

#endif
