// Where a host has the registry's content. The registry itself (registry.h) sees to the order of changes.
#ifndef QXHOST_COMMON_REGISTRY_REGISTRY_STORE_H
#define QXHOST_COMMON_REGISTRY_REGISTRY_STORE_H

#include <windows.h>

#include "common/registry/registry_tree.h"

namespace host {

/// The content at this moment. Any thread; at start the content is DefaultRegistry().
RegistryContent StoredRegistry();

/// The same for a change to begin with; calls follow one another, as those of StoreRegistry do.
RegistryContent RegistryToChange();

/// Turns the content from `before`, as RegistryToChange() has given it, into `after`; whoever looks sees the one or the
/// other. Returns 0 or the error.
DWORD StoreRegistry(const RegistryContent& before, const RegistryContent& after);

}  // namespace host

#endif
