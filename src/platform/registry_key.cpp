// The registry calls behind each operation.
#include "platform/registry_key.h"

namespace qxcm {

namespace {

/// A key that is open for one operation.
class OpenKey {
 public:
  OpenKey(HKEY root, const WideText& path, DWORD access) {
    if (RegOpenKeyExW(root, path.c_str(), 0, access, &key_) != ERROR_SUCCESS) key_ = nullptr;
  }
  explicit OpenKey(HKEY key) : key_(key) {}
  OpenKey(const OpenKey&) = delete;
  OpenKey& operator=(const OpenKey&) = delete;
  ~OpenKey() {
    if (key_ != nullptr) RegCloseKey(key_);
  }

  explicit operator bool() const { return key_ != nullptr; }
  HKEY get() const { return key_; }

 private:
  HKEY key_ = nullptr;
};

HKEY OpenOrMake(HKEY root, const WideText& path) {
  HKEY key = nullptr;
  DWORD disposition = 0;
  const LONG error = RegCreateKeyExW(root, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, &disposition);
  return error == ERROR_SUCCESS ? key : nullptr;
}

}  // namespace

bool RegistryKey::Exists() const { return static_cast<bool>(OpenKey(root_, path_, KEY_READ)); }

bool RegistryKey::QueryValueInfo(const WideText& name, DWORD* type, DWORD* size) const {
  const OpenKey key(root_, path_, KEY_READ);
  return key && RegQueryValueExW(key.get(), name.c_str(), nullptr, type, nullptr, size) == ERROR_SUCCESS;
}

bool RegistryKey::ReadValue(const WideText& name, DWORD expected_type, void* buffer, DWORD* size) const {
  const OpenKey key(root_, path_, KEY_READ);
  DWORD type = 0;
  return key &&
         RegQueryValueExW(key.get(), name.c_str(), nullptr, &type, static_cast<BYTE*>(buffer), size) == ERROR_SUCCESS &&
         type == expected_type;
}

bool RegistryKey::WriteValue(const WideText& name, DWORD type, const void* data, DWORD size) const {
  const OpenKey key(OpenOrMake(root_, path_));
  return key && RegSetValueExW(key.get(), name.c_str(), 0, type, static_cast<const BYTE*>(data), size) == ERROR_SUCCESS;
}

bool RegistryKey::DeleteValue(const WideText& name) const {
  const OpenKey key(root_, path_, KEY_ALL_ACCESS);
  return key && RegDeleteValueW(key.get(), name.c_str()) == ERROR_SUCCESS;
}

bool RegistryKey::Delete() const { return RegDeleteKeyW(root_, path_.c_str()) == ERROR_SUCCESS; }

}  // namespace qxcm
