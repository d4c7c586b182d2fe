#include <cstring>
#include <shared_mutex>
#include <utility>

#include "common/calls/last_error.h"
#include "common/kernel/handles.h"
#include "common/registry/registry.h"
#include "common/registry/registry_arguments.h"
#include "common/registry/registry_calls.h"
#include "windows/registry/private_key.h"
#include "windows/registry/registry_lock.h"
#include "windows/registry/system_keys.h"

namespace host {
namespace {

/// A key as an open handle knows it. The system tells when it has been deleted.
class OpenKey final : public KernelObject {
 public:
  OpenKey(RegistryPath path, HKEY key, bool own) : path_(std::move(path)), key_(key), own_(own) {}
  ~OpenKey() override {
    if (own_) ::RegCloseKey(key_);
  }
  bool EndsWithCloseHandle() const override { return false; }
  const RegistryPath& path() const { return path_; }
  HKEY system_key() const { return key_; }

 private:
  const RegistryPath path_;
  const HKEY key_;
  const bool own_;
};

using Key = std::shared_ptr<const OpenKey>;

/// Null when the handle is no key's.
Key FindOpenKey(HKEY key) {
  if (!IsRegistryRoot(key)) return std::dynamic_pointer_cast<OpenKey>(FindObject(key));
  const std::size_t root = RegistryRootPlace(key);
  return std::make_shared<OpenKey>(RegistryPath{kRegistryRoots[root]}, SystemRoot(root), false);
}

/// What a handle and a path name together.
struct Target {
  Key base;
  RegistryPath path;
};

DWORD FindTarget(HKEY key, LPCWSTR path, Target* target) {
  target->base = FindOpenKey(key);
  if (target->base == nullptr) return ERROR_INVALID_HANDLE;
  target->path = target->base->path();
  return AppendRegistryPath(Text(path), &target->path);
}

/// The part of the path that is below the open key, as the system takes it.
WideString Below(const Target& target) {
  WideString below;
  for (std::size_t i = target.base->path().size(); i < target.path.size(); ++i) {
    below += (below.empty() ? TEXT("") : TEXT("\\")) + target.path[i];
  }
  return below;
}

LONG Open(const Target& target, PHKEY opened) {
  HKEY key = nullptr;
  const LONG error = ::RegOpenKeyExW(target.base->system_key(), Below(target).c_str(), 0, KEY_ALL_ACCESS, &key);
  if (error != 0) return error;
  const HANDLE handle = InsertHandle(std::make_shared<OpenKey>(target.path, key, true));
  if (handle == nullptr) return Code(ERROR_NOT_ENOUGH_MEMORY);
  *opened = static_cast<HKEY>(handle);
  return Code(ERROR_SUCCESS);
}

/// 0 as long as the key exists, else what the system says.
DWORD StateOf(const OpenKey& key) {
  return static_cast<DWORD>(::RegQueryInfoKeyW(key.system_key(), nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                               nullptr, nullptr, nullptr, nullptr, nullptr));
}

/// Changes what is at or under an open key.
template <class Edit>
LONG ChangeKey(const OpenKey& key, const Edit& edit) {
  return Code(Registry::Instance().Change([&](RegistryContent* content) {
    if (const DWORD error = StateOf(key)) return error;
    RegistryEdit changes(*content);
    const DWORD error = edit(changes);
    *content = changes.content();
    return error;
  }));
}

}  // namespace

std::string RegistrySubject(HKEY key, LPCWSTR path) {
  Target target;
  return FindTarget(key, path, &target) == ERROR_SUCCESS ? RegistryPathText(target.path) : std::string();
}

LONG RegOpenKeyExW(HKEY key, LPCWSTR path, DWORD options, DWORD, PHKEY opened) {
  const KeepLastError keep;
  if (opened == nullptr || options != 0) return Code(ERROR_INVALID_PARAMETER);
  Target target;
  if (const DWORD error = FindTarget(key, path, &target)) return Code(error);
  const std::shared_lock<std::shared_mutex> lock(RegistryLock());
  return Open(target, opened);
}

LONG RegCreateKeyExW(HKEY key, LPCWSTR path, DWORD reserved, LPCWSTR, DWORD, DWORD, LPSECURITY_ATTRIBUTES, PHKEY opened,
                     LPDWORD disposition) {
  const KeepLastError keep;
  if (opened == nullptr || reserved != 0) return Code(ERROR_INVALID_PARAMETER);
  Target target;
  if (const DWORD error = FindTarget(key, path, &target)) return Code(error);
  bool made = false;
  const LONG error = ChangeKey(*target.base, [&](RegistryEdit& edit) {
    made = FindRegistryKey(edit.content(), target.path) == nullptr;
    edit.AddKey(target.path);
    return DWORD{ERROR_SUCCESS};
  });
  if (error != 0) return error;
  if (disposition != nullptr) *disposition = made ? REG_CREATED_NEW_KEY : REG_OPENED_EXISTING_KEY;
  const std::shared_lock<std::shared_mutex> lock(RegistryLock());
  return Open(target, opened);
}

LONG RegCloseKey(HKEY key) {
  const KeepLastError keep;
  if (IsRegistryRoot(key)) return Code(ERROR_SUCCESS);
  const bool closed = FindOpenKey(key) != nullptr && RemoveHandle(key);
  return Code(closed ? ERROR_SUCCESS : ERROR_INVALID_HANDLE);
}

LONG RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, BYTE* data, LPDWORD size) {
  const KeepLastError keep;
  if (reserved != nullptr || (data != nullptr && size == nullptr)) return Code(ERROR_INVALID_PARAMETER);
  const Key open = FindOpenKey(key);
  if (open == nullptr) return Code(ERROR_INVALID_HANDLE);
  RegistryValue value;
  {
    const std::shared_lock<std::shared_mutex> lock(RegistryLock());
    if (const LONG error = ReadSystemValue(open->system_key(), name, &value)) return error;
  }
  if (type != nullptr) *type = value.type;
  if (size == nullptr) return Code(ERROR_SUCCESS);
  const DWORD room = std::exchange(*size, static_cast<DWORD>(value.data.size()));
  if (data == nullptr) return Code(ERROR_SUCCESS);
  if (room < *size) return Code(ERROR_MORE_DATA);
  if (*size != 0) std::memcpy(data, value.data.data(), *size);
  return Code(ERROR_SUCCESS);
}

LONG RegSetValueExW(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data, DWORD size) {
  const KeepLastError keep;
  const bool good = reserved == 0 && (data != nullptr || size == 0) && size <= kLargestRegistryValue;
  if (!good || !GoodRegistryName(Text(name))) return Code(ERROR_INVALID_PARAMETER);
  const Key open = FindOpenKey(key);
  if (open == nullptr) return Code(ERROR_INVALID_HANDLE);
  return ChangeKey(*open, [&](RegistryEdit& edit) {
    edit.SetValue(open->path(), {WideString(Text(name)), type, std::vector<BYTE>(data, data + size)});
    return DWORD{ERROR_SUCCESS};
  });
}

LONG RegDeleteValueW(HKEY key, LPCWSTR name) {
  const KeepLastError keep;
  const Key open = FindOpenKey(key);
  if (open == nullptr) return Code(ERROR_INVALID_HANDLE);
  return ChangeKey(*open, [&](RegistryEdit& edit) -> DWORD {
    return edit.RemoveValue(open->path(), Text(name)) ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
  });
}

LONG RegDeleteKeyW(HKEY key, LPCWSTR path) {
  const KeepLastError keep;
  if (path == nullptr) return Code(ERROR_INVALID_PARAMETER);
  Target target;
  if (const DWORD error = FindTarget(key, path, &target)) return Code(error);
  if (target.path.size() == 1) return Code(ERROR_ACCESS_DENIED);
  return ChangeKey(*target.base, [&](RegistryEdit& edit) -> DWORD {
    return edit.RemoveKey(target.path) ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
  });
}

}  // namespace host
