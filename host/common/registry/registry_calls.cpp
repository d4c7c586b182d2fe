#include "common/registry/registry_calls.h"

#include <cstring>
#include <utility>

#include "common/calls/last_error.h"
#include "common/registry/open_key.h"
#include "common/registry/registry.h"
#include "common/registry/registry_arguments.h"

namespace host {
namespace {

using KeyPointer = std::shared_ptr<const OpenKey>;

/// Null when the handle is no key's.
KeyPointer FindOpenKey(HKEY key) {
  if (IsRegistryRoot(key)) return OpenRegistryRoot(RegistryRootPlace(key));
  return std::dynamic_pointer_cast<OpenKey>(FindObject(key));
}

/// What a handle and a path name together.
struct Target {
  KeyPointer base;
  RegistryPath path;
};

DWORD FindTarget(HKEY key, LPCWSTR path, Target* target) {
  target->base = FindOpenKey(key);
  if (target->base == nullptr) return ERROR_INVALID_HANDLE;
  target->path = target->base->path();
  return AppendRegistryPath(Text(path), &target->path);
}

LONG Open(const Target& target, const RegistryContent* made, PHKEY opened) {
  std::shared_ptr<OpenKey> key;
  if (const DWORD error = target.base->Open(target.path, made, &key)) return Code(error);
  const HANDLE handle = InsertHandle(std::move(key));
  if (handle == nullptr) return Code(ERROR_NOT_ENOUGH_MEMORY);
  *opened = static_cast<HKEY>(handle);
  return Code(ERROR_SUCCESS);
}

/// Changes what is at or under an open key.
template <class Edit>
LONG ChangeKey(const OpenKey& key, const Edit& edit) {
  return Code(Registry::Instance().Change([&](RegistryContent* content) {
    if (const DWORD error = key.State(*content)) return error;
    RegistryEdit changes(*content);
    const DWORD error = edit(changes);
    *content = changes.content();
    return error;
  }));
}

LONG GiveData(const std::vector<BYTE>& value, BYTE* data, LPDWORD size) {
  const DWORD room = std::exchange(*size, static_cast<DWORD>(value.size()));
  if (data == nullptr) return Code(ERROR_SUCCESS);
  if (room < *size) return Code(ERROR_MORE_DATA);
  if (*size != 0) std::memcpy(data, value.data(), *size);
  return Code(ERROR_SUCCESS);
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
  return Open(target, nullptr, opened);
}

LONG RegCreateKeyExW(HKEY key, LPCWSTR path, DWORD reserved, LPCWSTR, DWORD, DWORD, LPSECURITY_ATTRIBUTES, PHKEY opened,
                     LPDWORD disposition) {
  const KeepLastError keep;
  if (opened == nullptr || reserved != 0) return Code(ERROR_INVALID_PARAMETER);
  Target target;
  if (const DWORD error = FindTarget(key, path, &target)) return Code(error);
  bool is_new = false;
  RegistryContent made;
  const LONG error = ChangeKey(*target.base, [&](RegistryEdit& edit) {
    is_new = FindRegistryKey(edit.content(), target.path) == nullptr;
    edit.AddKey(target.path);
    made = edit.content();
    return DWORD{ERROR_SUCCESS};
  });
  if (error != 0) return error;
  if (disposition != nullptr) *disposition = is_new ? REG_CREATED_NEW_KEY : REG_OPENED_EXISTING_KEY;
  return Open(target, &made, opened);
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
  const KeyPointer open = FindOpenKey(key);
  if (open == nullptr) return Code(ERROR_INVALID_HANDLE);
  RegistryValue value;
  if (const DWORD error = open->Read(name, &value)) return Code(error);
  if (type != nullptr) *type = value.type;
  return size == nullptr ? Code(ERROR_SUCCESS) : GiveData(value.data, data, size);
}

LONG RegSetValueExW(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data, DWORD size) {
  const KeepLastError keep;
  const bool good = reserved == 0 && (data != nullptr || size == 0) && size <= kLargestRegistryValue;
  if (!good || !GoodRegistryName(Text(name))) return Code(ERROR_INVALID_PARAMETER);
  const KeyPointer open = FindOpenKey(key);
  if (open == nullptr) return Code(ERROR_INVALID_HANDLE);
  return ChangeKey(*open, [&](RegistryEdit& edit) {
    edit.SetValue(open->path(), {WideString(Text(name)), type, std::vector<BYTE>(data, data + size)});
    return DWORD{ERROR_SUCCESS};
  });
}

LONG RegDeleteValueW(HKEY key, LPCWSTR name) {
  const KeepLastError keep;
  const KeyPointer open = FindOpenKey(key);
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
