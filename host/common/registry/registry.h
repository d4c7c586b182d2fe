// The instrument's registry: its content, changes to it, and whoever keeps it.
#ifndef QXHOST_COMMON_REGISTRY_REGISTRY_H
#define QXHOST_COMMON_REGISTRY_REGISTRY_H

#include <windows.h>

#include <functional>
#include <mutex>

#include "common/registry/registry_tree.h"

namespace host {

/// Any thread. A change is seen by all at once, when it has been kept: nobody ever sees one that is refused.
class Registry {
 public:
  /// The process's one; with the defaults at start.
  static Registry& Instance();

  RegistryContent Content() const;

  /// Turns the content into another. Returns 0, or an error code with nothing changed. May throw likewise.
  using Edit = std::function<DWORD(RegistryContent*)>;

  /// Makes one change; changes are made one after the other. Returns 0 when the change has been kept, or there was
  /// none; else what the edit or the keeper returned, or ERROR_OUTOFMEMORY when the content would be too large (see
  /// kMostRegistryBytes), with nothing changed.
  DWORD Change(const Edit& edit);

  /// Makes this the whole content. Errors as Change.
  DWORD Replace(const RegistryContent& content);

  /// Keeps the content a change leads to, somewhere that lasts, before the change is made and its call returns.
  /// Returns 0, or the error code to refuse the change with. It must not change the registry itself: no other change
  /// begins until it has returned. It may look at the registry, and sees it without the change.
  using Keeper = std::function<DWORD(const RegistryContent&)>;

  /// Null for none. On return the keeper before is not called any more.
  void SetKeeper(Keeper keeper);

 private:
  Registry() = default;

  std::mutex change_mutex_;  // held for a whole change, the keeper's call included
  Keeper keeper_;            // guarded by change_mutex_
};

}  // namespace host

#endif
