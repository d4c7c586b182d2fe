// Registry keys as the tests use them, below one key of their own that is gone before and after each test.
#ifndef QXTEST_PLATFORM_OPEN_KEY_H
#define QXTEST_PLATFORM_OPEN_KEY_H

#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

namespace platform_test {

using Bytes = std::vector<BYTE>;

/// The error codes as the calls return them.
constexpr LONG Code(DWORD error) { return static_cast<LONG>(error); }

/// An open key, closed at the end; null when it could not be opened.
class OpenKey {
 public:
  OpenKey() = default;
  OpenKey(const OpenKey&) = delete;
  OpenKey& operator=(const OpenKey&) = delete;
  ~OpenKey() {
    if (key_ != nullptr) RegCloseKey(key_);
  }
  operator HKEY() const { return key_; }

  LONG Open(HKEY base, LPCWSTR path) { return RegOpenKeyExW(base, path, 0, KEY_ALL_ACCESS, &key_); }
  LONG Make(HKEY base, LPCWSTR path, DWORD* disposition = nullptr) {
    return RegCreateKeyExW(base, path, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key_, disposition);
  }
  LONG Set(LPCWSTR name, const Bytes& data, DWORD type = REG_BINARY) const {
    return RegSetValueExW(key_, name, 0, type, data.data(), static_cast<DWORD>(data.size()));
  }
  /// The value's bytes, up to 8192 of them.
  LONG Get(LPCWSTR name, Bytes* data, DWORD* type = nullptr) const {
    DWORD size = 8192;
    data->resize(size);
    const LONG error = RegQueryValueExW(key_, name, nullptr, type, data->data(), &size);
    data->resize(error == 0 ? size : 0);
    return error;
  }
  LONG Close() {
    const LONG error = RegCloseKey(key_);
    key_ = nullptr;
    return error;
  }

 private:
  HKEY key_ = nullptr;
};

#define QXTEST_KEY TEXT("Software\\QXTest")

class RegistryTest : public testing::Test {
 protected:
  RegistryTest() {
    Clear();
    EXPECT_EQ(own_.Make(HKEY_CURRENT_USER, QXTEST_KEY), 0);
  }
  ~RegistryTest() override { Clear(); }

  OpenKey own_;

 private:
  // The deepest first: the desktop deletes only keys without keys under them.
  static void Clear() {
    for (const LPCWSTR path : {QXTEST_KEY TEXT("\\A\\B\\C"), QXTEST_KEY TEXT("\\A\\B"), QXTEST_KEY TEXT("\\A"),
                               QXTEST_KEY TEXT("\\Level"), QXTEST_KEY}) {
      RegDeleteKeyW(HKEY_CURRENT_USER, path);
    }
  }
};

}  // namespace platform_test

#endif
