#include "common/registry/registry_calls.h"

#include <cstring>
#include <utility>

#include "common/kernel/handles.h"
#include "common/registry/registry.h"
#include "common/registry/registry_arguments.h"

namespace host {
namespace {

/// A key as an open handle knows it: the place it was opened at, and which of all keys ever made there it is.
struct KnownKey {
  RegistryPath path;
  std::uint64_t id = 0;
};

class OpenKey final : public KernelObject {
 public:
  explicit OpenKey(KnownKey key) : key_(std::move(key)) {}
  bool EndsWithCloseHandle() const override { return false; }
  const KnownKey& key() const { return key_; }

 private:
  const KnownKey key_;
};

DWORD FindOpenKey(HKEY key, KnownKey* known) {
  if (IsRegistryRoot(key)) {
    const std::size_t root = RegistryRootPlace(key);
    *known = {{kRegistryRoots[root]}, root + 1};
    return ERROR_SUCCESS;
  }
  const auto object = std::dynamic_pointer_cast<OpenKey>(FindObject(key));
  if (object == nullptr) return ERROR_INVALID_HANDLE;
  *known = object->key();
  return ERROR_SUCCESS;
}

/// The key behind a handle; null when it has been deleted.
const RegistryKey* Find(const RegistryContent& content, const KnownKey& known) {
  const RegistryKey* key = FindRegistryKey(content, known.path);
  return key != nullptr && key->id == known.id ? key : nullptr;
}

/// What a handle and a path name together.
struct Target {
  KnownKey base;
  RegistryPath path;
};

DWORD FindTarget(HKEY key, LPCWSTR path, Target* target) {
  if (const DWORD error = FindOpenKey(key, &target->base)) return error;
  target->path = target->base.path;
  return AppendRegistryPath(Text(path), &target->path);
}

LONG Open(RegistryPath path, std::uint64_t id, PHKEY opened) {
  const HANDLE handle = InsertHandle(std::make_shared<OpenKey>(KnownKey{std::move(path), id}));
  if (handle == nullptr) return Code(ERROR_NOT_ENOUGH_MEMORY);
  *opened = static_cast<HKEY>(handle);
  return Code(ERROR_SUCCESS);
}

/// Changes what is at or under an open key.
template <class Edit>
LONG ChangeKey(const KnownKey& key, const Edit& edit) {
  return Code(Registry::Instance().Change([&](RegistryContent* content) {
    if (Find(*content, key) == nullptr) return DWORD{ERROR_KEY_DELETED};
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
  if (opened == nullptr || options != 0) return Code(ERROR_INVALID_PARAMETER);
  Target target;
  if (const DWORD error = FindTarget(key, path, &target)) return Code(error);
  const RegistryContent content = Registry::Instance().Content();
  if (Find(content, target.base) == nullptr) return Code(ERROR_KEY_DELETED);
  const RegistryKey* found = FindRegistryKey(content, target.path);
  return found == nullptr ? Code(ERROR_FILE_NOT_FOUND) : Open(target.path, found->id, opened);
}

LONG RegCreateKeyExW(HKEY key, LPCWSTR path, DWORD reserved, LPCWSTR, DWORD, DWORD, LPSECURITY_ATTRIBUTES, PHKEY opened,
                     LPDWORD disposition) {
  if (opened == nullptr || reserved != 0) return Code(ERROR_INVALID_PARAMETER);
  Target target;
  if (const DWORD error = FindTarget(key, path, &target)) return Code(error);
  std::uint64_t id = 0;
  bool made = false;
  const LONG error = ChangeKey(target.base, [&](RegistryEdit& edit) {
    made = FindRegistryKey(edit.content(), target.path) == nullptr;
    edit.AddKey(target.path);
    id = FindRegistryKey(edit.content(), target.path)->id;
    return DWORD{ERROR_SUCCESS};
  });
  if (error != 0) return error;
  if (disposition != nullptr) *disposition = made ? REG_CREATED_NEW_KEY : REG_OPENED_EXISTING_KEY;
  return Open(target.path, id, opened);
}

LONG RegCloseKey(HKEY key) {
  if (IsRegistryRoot(key)) return Code(ERROR_SUCCESS);
  KnownKey known;
  const bool closed = FindOpenKey(key, &known) == ERROR_SUCCESS && RemoveHandle(key);
  return Code(closed ? ERROR_SUCCESS : ERROR_INVALID_HANDLE);
}

LONG RegQueryValueExW(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, BYTE* data, LPDWORD size) {
  if (reserved != nullptr || (data != nullptr && size == nullptr)) return Code(ERROR_INVALID_PARAMETER);
  KnownKey known;
  if (const DWORD error = FindOpenKey(key, &known)) return Code(error);
  const RegistryContent content = Registry::Instance().Content();
  const RegistryKey* found = Find(content, known);
  if (found == nullptr) return Code(ERROR_KEY_DELETED);
  const RegistryValue* value = FindRegistryValue(*found, Text(name));
  if (value == nullptr) return Code(ERROR_FILE_NOT_FOUND);
  if (type != nullptr) *type = value->type;
  if (size == nullptr) return Code(ERROR_SUCCESS);
  const DWORD room = std::exchange(*size, static_cast<DWORD>(value->data.size()));
  if (data == nullptr) return Code(ERROR_SUCCESS);
  if (room < *size) return Code(ERROR_MORE_DATA);
  if (*size != 0) std::memcpy(data, value->data.data(), *size);
  return Code(ERROR_SUCCESS);
}

LONG RegSetValueExW(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data, DWORD size) {
  const bool good = reserved == 0 && (data != nullptr || size == 0) && size <= kLargestRegistryValue;
  if (!good || !GoodRegistryName(Text(name))) return Code(ERROR_INVALID_PARAMETER);
  KnownKey known;
  if (const DWORD error = FindOpenKey(key, &known)) return Code(error);
  return ChangeKey(known, [&](RegistryEdit& edit) {
    edit.SetValue(known.path, {std::u16string(Text(name)), type, std::vector<BYTE>(data, data + size)});
    return DWORD{ERROR_SUCCESS};
  });
}

LONG RegDeleteValueW(HKEY key, LPCWSTR name) {
  KnownKey known;
  if (const DWORD error = FindOpenKey(key, &known)) return Code(error);
  return ChangeKey(known, [&](RegistryEdit& edit) {
    return edit.RemoveValue(known.path, Text(name)) ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
  });
}

LONG RegDeleteKeyW(HKEY key, LPCWSTR path) {
  if (path == nullptr) return Code(ERROR_INVALID_PARAMETER);
  Target target;
  if (const DWORD error = FindTarget(key, path, &target)) return Code(error);
  if (target.path.size() == 1) return Code(ERROR_ACCESS_DENIED);
  return ChangeKey(target.base, [&](RegistryEdit& edit) {
    return edit.RemoveKey(target.path) ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND;
  });
}

}  // namespace host
