// The registry in the system's: a private key of this process, and what is really there.
#include <gtest/gtest.h>
#include <windows.h>

#include "common/registry/registry.h"
#include "common/text/utf.h"
#include "open_key.h"
#include "win32_system_calls.h"
#include "windows/registry/private_key.h"

namespace platform_test {
namespace {

using host::WideString;

/// A key of the system's own registry, below HKEY_CURRENT_USER; null when there is none.
class SystemKey {
 public:
  explicit SystemKey(const WideString& path) {
    SystemCall<decltype(::RegOpenKeyExW)>("RegOpenKeyExW")(HKEY_CURRENT_USER, path.c_str(), 0, KEY_ALL_ACCESS, &key_);
  }
  SystemKey(const SystemKey&) = delete;
  SystemKey& operator=(const SystemKey&) = delete;
  ~SystemKey() {
    if (key_ != nullptr) SystemCall<decltype(::RegCloseKey)>("RegCloseKey")(key_);
  }
  bool exists() const { return key_ != nullptr; }
  HKEY get() const { return key_; }
  Bytes Value(LPCWSTR name) const {
    Bytes data(64);
    auto size = static_cast<DWORD>(data.size());
    const auto query = SystemCall<decltype(::RegQueryValueExW)>("RegQueryValueExW");
    data.resize(query(key_, name, nullptr, nullptr, data.data(), &size) == 0 ? size : 0);
    return data;
  }

 private:
  HKEY key_ = nullptr;
};

void MakeSystemKey(const WideString& path) {
  HKEY key = nullptr;
  const auto make = SystemCall<decltype(::RegCreateKeyExW)>("RegCreateKeyExW");
  EXPECT_EQ(
      make(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr, &key, nullptr),
      0);
  SystemCall<decltype(::RegCloseKey)>("RegCloseKey")(key);
}

using PrivateKeyTest = RegistryTest;

TEST_F(PrivateKeyTest, HoldsTheInstrumentsRootsAndNothingElseIsTouched) {
  ASSERT_EQ(own_.Set(TEXT("Level"), {1, 2}), 0);
  const WideString roots = host::PrivateKeyPath();
  EXPECT_EQ(SystemKey(roots + TEXT("\\HKCU\\") QXTEST_KEY).Value(TEXT("level")), (Bytes{1, 2}));
  EXPECT_TRUE(SystemKey(roots + TEXT("\\HKLM\\Time Zones\\W. Europe Standard Time")).exists());
  EXPECT_FALSE(SystemKey(QXTEST_KEY).exists());
}

TEST_F(PrivateKeyTest, IsWhatTheContentTells) {
  MakeSystemKey(host::PrivateKeyPath() + TEXT("\\HKCU\\") QXTEST_KEY TEXT("\\A"));
  const host::RegistryContent content = host::Registry::Instance().Content();
  EXPECT_NE(host::FindRegistryKey(content, {TEXT("HKCU"), TEXT("Software"), TEXT("QXTest"), TEXT("A")}), nullptr);
}

TEST_F(PrivateKeyTest, IsLeftByNoProcessThatIsNoMore) {
  const WideString all = host::PrivateKeyPath().substr(0, host::PrivateKeyPath().rfind(TEXT('\\')) + 1);
  const WideString dead = all + TEXT("4294967292-133500000000000000");
  const WideString reused = all + std::to_wstring(::GetCurrentProcessId()) + TEXT("-5");
  for (const WideString& left : {dead, reused}) MakeSystemKey(left + TEXT("\\HKCU\\Software"));
  host::RemoveLeftPrivateKeys();
  EXPECT_FALSE(SystemKey(dead).exists());
  EXPECT_FALSE(SystemKey(reused).exists());
  EXPECT_TRUE(SystemKey(host::PrivateKeyPath()).exists());
}

TEST_F(PrivateKeyTest, KeepsTheBytesOfATextAsTheyAre) {
  const Bytes unfinished = {'a', 0, 'b'};
  const Bytes exact(unfinished);
  ASSERT_EQ(own_.Set(TEXT("Text"), exact, REG_SZ), 0);
  Bytes data;
  EXPECT_EQ(own_.Get(TEXT("Text"), &data), 0);
  EXPECT_EQ(data, unfinished);
  BYTE buffer[5] = {0xEE, 0xEE, 0xEE, 0xEE, 0xEE};
  DWORD size = sizeof buffer;
  EXPECT_EQ(RegQueryValueExW(own_, TEXT("Text"), nullptr, nullptr, buffer, &size), 0);
  EXPECT_EQ(buffer[3], 0xEE);
}

}  // namespace
}  // namespace platform_test
