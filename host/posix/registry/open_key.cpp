// Open keys on this host: places in the registry's content.
#include "common/registry/open_key.h"

#include <cstdint>

#include "common/registry/registry.h"

namespace host {
namespace {

/// The place a key was opened at, and which of all keys ever made there it is.
class KnownKey final : public OpenKey {
 public:
  KnownKey(RegistryPath path, std::uint64_t id) : OpenKey(std::move(path)), id_(id) {}

  DWORD State(const RegistryContent& content) const override {
    return Find(content) == nullptr ? ERROR_KEY_DELETED : ERROR_SUCCESS;
  }

  DWORD Open(const RegistryPath& target, const RegistryContent* made, std::shared_ptr<OpenKey>* opened) const override {
    const RegistryContent content = made == nullptr ? Registry::Instance().Content() : *made;
    if (const DWORD error = State(content)) return error;
    const RegistryKey* found = FindRegistryKey(content, target);
    if (found == nullptr) return ERROR_FILE_NOT_FOUND;
    *opened = std::make_shared<KnownKey>(target, found->id);
    return ERROR_SUCCESS;
  }

  DWORD Read(LPCWSTR name, RegistryValue* value) const override {
    const RegistryContent content = Registry::Instance().Content();
    const RegistryKey* key = Find(content);
    if (key == nullptr) return ERROR_KEY_DELETED;
    const RegistryValue* found = FindRegistryValue(*key, name == nullptr ? WideView() : WideView(name));
    if (found == nullptr) return ERROR_FILE_NOT_FOUND;
    *value = *found;
    return ERROR_SUCCESS;
  }

 private:
  /// Null when it has been deleted.
  const RegistryKey* Find(const RegistryContent& content) const {
    const RegistryKey* key = FindRegistryKey(content, path());
    return key != nullptr && key->id == id_ ? key : nullptr;
  }

  const std::uint64_t id_;
};

}  // namespace

std::shared_ptr<const OpenKey> OpenRegistryRoot(std::size_t place) {
  return std::make_shared<KnownKey>(RegistryPath{kRegistryRoots[place]}, place + 1);
}

}  // namespace host
