// Keys as open handles know them. What stands behind one is the host's.
#ifndef QXHOST_COMMON_REGISTRY_OPEN_KEY_H
#define QXHOST_COMMON_REGISTRY_OPEN_KEY_H

#include <windows.h>

#include <cstddef>
#include <memory>
#include <utility>

#include "common/kernel/handles.h"
#include "common/registry/registry_tree.h"

namespace host {

/// Any thread.
class OpenKey : public KernelObject {
 public:
  explicit OpenKey(RegistryPath path) : path_(std::move(path)) {}
  bool EndsWithCloseHandle() const override { return false; }

  /// Where it was opened.
  const RegistryPath& path() const { return path_; }

  /// 0 as long as the key exists, 1018 when it has been deleted. `content`: what a change begins with.
  virtual DWORD State(const RegistryContent& content) const = 0;

  /// Opens the key at a path that begins with this key's. `made`: the content in which it has just been made, null when
  /// it need not be there. Returns 0 or the error: 2, or 1018 when this key has been deleted.
  virtual DWORD Open(const RegistryPath& target, const RegistryContent* made,
                     std::shared_ptr<OpenKey>* opened) const = 0;

  /// A value's type and data. Returns 0 or the error: 2, or 1018 when the key has been deleted.
  virtual DWORD Read(LPCWSTR name, RegistryValue* value) const = 0;

 private:
  const RegistryPath path_;
};

/// The root of this place in kRegistryRoots.
std::shared_ptr<const OpenKey> OpenRegistryRoot(std::size_t place);

}  // namespace host

#endif
