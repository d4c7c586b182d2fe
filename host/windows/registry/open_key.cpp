// Open keys on this host: the system's own, which tells when one has been deleted.
#include "common/registry/open_key.h"

#include <shared_mutex>

#include "windows/registry/private_key.h"
#include "windows/registry/registry_lock.h"
#include "windows/registry/system_keys.h"

namespace host {
namespace {

/// The part of the path that is below an open key's, as the system takes it.
WideString Below(const RegistryPath& base, const RegistryPath& path) {
  WideString below;
  for (std::size_t i = base.size(); i < path.size(); ++i) below += (below.empty() ? TEXT("") : TEXT("\\")) + path[i];
  return below;
}

class SystemKey final : public OpenKey {
 public:
  SystemKey(RegistryPath path, HKEY key, bool own) : OpenKey(std::move(path)), key_(key), own_(own) {}
  ~SystemKey() override {
    if (own_) ::RegCloseKey(key_);
  }

  DWORD State(const RegistryContent&) const override {
    return static_cast<DWORD>(::RegQueryInfoKeyW(key_, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                                 nullptr, nullptr, nullptr, nullptr));
  }

  DWORD Open(const RegistryPath& target, const RegistryContent*, std::shared_ptr<OpenKey>* opened) const override {
    const std::shared_lock<std::shared_mutex> lock(RegistryLock());
    HKEY key = nullptr;
    const LONG error = ::RegOpenKeyExW(key_, Below(path(), target).c_str(), 0, KEY_ALL_ACCESS, &key);
    if (error == 0) *opened = std::make_shared<SystemKey>(target, key, true);
    return static_cast<DWORD>(error);
  }

  DWORD Read(LPCWSTR name, RegistryValue* value) const override {
    const std::shared_lock<std::shared_mutex> lock(RegistryLock());
    return static_cast<DWORD>(ReadSystemValue(key_, name, value));
  }

 private:
  const HKEY key_;
  const bool own_;
};

}  // namespace

std::shared_ptr<const OpenKey> OpenRegistryRoot(std::size_t place) {
  return std::make_shared<SystemKey>(RegistryPath{kRegistryRoots[place]}, SystemRoot(place), false);
}

}  // namespace host
