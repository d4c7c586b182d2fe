// The registry calls. What differs between Windows CE and desktop Windows is left to host_registry_test.cpp: keys that
// hold keys (CE deletes them with what is under them, the desktop refuses), limits (the desktop's are wider), and null
// or odd paths.
#include <thread>

#include "kernel_objects.h"
#include "open_key.h"

namespace platform_test {
namespace {

using RegCreateKeyExTest = RegistryTest;
using RegOpenKeyExTest = RegistryTest;
using RegCloseKeyTest = RegistryTest;
using RegQueryValueExTest = RegistryTest;
using RegSetValueExTest = RegistryTest;
using RegDeleteValueTest = RegistryTest;
using RegDeleteKeyTest = RegistryTest;

TEST_F(RegCreateKeyExTest, MakesTheKeyAndThoseOnTheWay) {
  DWORD disposition = 0;
  OpenKey key;
  EXPECT_EQ(key.Make(own_, TEXT("A\\B\\C"), &disposition), 0);
  EXPECT_EQ(disposition, DWORD{REG_CREATED_NEW_KEY});
  EXPECT_EQ(OpenKey().Open(own_, TEXT("A")), 0);
  EXPECT_EQ(OpenKey().Open(HKEY_CURRENT_USER, QXTEST_KEY TEXT("\\A\\B\\C")), 0);
}

TEST_F(RegCreateKeyExTest, OpensTheKeyThatIsThere) {
  OpenKey first;
  ASSERT_EQ(first.Make(own_, TEXT("A")), 0);
  ASSERT_EQ(first.Set(TEXT("Level"), {1}), 0);
  DWORD disposition = 0;
  OpenKey second;
  EXPECT_EQ(second.Make(own_, TEXT("a"), &disposition), 0);
  EXPECT_EQ(disposition, DWORD{REG_OPENED_EXISTING_KEY});
  Bytes data;
  EXPECT_EQ(second.Get(TEXT("Level"), &data), 0);
}

TEST_F(RegCreateKeyExTest, RefusesAReservedArgumentAndNoPlaceForTheHandle) {
  HKEY key = nullptr;
  EXPECT_EQ(RegCreateKeyExW(own_, TEXT("A"), 1, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
            Code(ERROR_INVALID_PARAMETER));
  EXPECT_EQ(RegCreateKeyExW(own_, TEXT("A"), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, nullptr, nullptr),
            Code(ERROR_INVALID_PARAMETER));
  EXPECT_EQ(OpenKey().Open(own_, TEXT("A")), Code(ERROR_FILE_NOT_FOUND));
}

TEST_F(RegCreateKeyExTest, TakesAKeyNameOf255CharactersAndNoLongerOne) {
  const std::basic_string<WCHAR> name(255, 'K');
  EXPECT_EQ(OpenKey().Make(own_, name.c_str()), 0);
  EXPECT_EQ(RegDeleteKeyW(own_, name.c_str()), 0);
  EXPECT_EQ(OpenKey().Make(own_, (name + name[0]).c_str()), Code(ERROR_INVALID_PARAMETER));
}

TEST_F(RegOpenKeyExTest, FindsAKeyWhateverTheCaseOfItsName) {
  ASSERT_EQ(OpenKey().Make(own_, TEXT("A\\B")), 0);
  EXPECT_EQ(OpenKey().Open(own_, TEXT("a\\b")), 0);
  EXPECT_EQ(OpenKey().Open(HKEY_CURRENT_USER, TEXT("SOFTWARE\\qxTEST\\A")), 0);
}

TEST_F(RegOpenKeyExTest, AnEmptyPathIsTheKeyItself) {
  OpenKey again;
  ASSERT_EQ(again.Open(own_, TEXT("")), 0);
  EXPECT_EQ(again.Set(TEXT("Level"), {7}), 0);
  Bytes data;
  EXPECT_EQ(own_.Get(TEXT("Level"), &data), 0);
  EXPECT_EQ(data, Bytes{7});
}

TEST_F(RegOpenKeyExTest, AMissingKeyIs2) {
  OpenKey key;
  EXPECT_EQ(key.Open(own_, TEXT("A")), Code(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(key.Open(own_, TEXT("A\\B\\C")), Code(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(static_cast<HKEY>(key), nullptr);
}

TEST_F(RegOpenKeyExTest, AValueIsNoKey) {
  ASSERT_EQ(own_.Set(TEXT("Level"), {1}), 0);
  EXPECT_EQ(OpenKey().Open(own_, TEXT("Level")), Code(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(OpenKey().Make(own_, TEXT("Level")), 0);
  EXPECT_EQ(RegDeleteValueW(own_, TEXT("Level")), 0);
  EXPECT_EQ(OpenKey().Open(own_, TEXT("Level")), 0);
}

TEST_F(RegOpenKeyExTest, RefusesNoPlaceForTheHandle) {
  EXPECT_EQ(RegOpenKeyExW(own_, TEXT(""), 0, KEY_READ, nullptr), Code(ERROR_INVALID_PARAMETER));
}

TEST_F(RegOpenKeyExTest, AHandleOfNoKeyIs6) {
  const Handle event = AutoEvent();
  OpenKey closed;
  ASSERT_EQ(closed.Open(own_, TEXT("")), 0);
  const HKEY stale = closed;
  closed.Close();
  for (const HKEY key : {static_cast<HKEY>(nullptr), stale, reinterpret_cast<HKEY>(static_cast<HANDLE>(event))}) {
    HKEY opened = nullptr;
    DWORD size = 0;
    EXPECT_EQ(RegOpenKeyExW(key, TEXT("A"), 0, KEY_READ, &opened), Code(ERROR_INVALID_HANDLE));
    EXPECT_EQ(OpenKey().Make(key, TEXT("A")), Code(ERROR_INVALID_HANDLE));
    EXPECT_EQ(RegQueryValueExW(key, TEXT("A"), nullptr, nullptr, nullptr, &size), Code(ERROR_INVALID_HANDLE));
    EXPECT_EQ(RegSetValueExW(key, TEXT("A"), 0, REG_BINARY, nullptr, 0), Code(ERROR_INVALID_HANDLE));
    EXPECT_EQ(RegDeleteValueW(key, TEXT("A")), Code(ERROR_INVALID_HANDLE));
    EXPECT_EQ(RegDeleteKeyW(key, TEXT("A")), Code(ERROR_INVALID_HANDLE));
    EXPECT_EQ(RegCloseKey(key), Code(ERROR_INVALID_HANDLE));
  }
}

TEST_F(RegCloseKeyTest, RootsStayOpen) {
  for (const HKEY root : {HKEY_CLASSES_ROOT, HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE, HKEY_USERS}) {
    EXPECT_EQ(RegCloseKey(root), 0);
    EXPECT_EQ(OpenKey().Open(root, TEXT("")), 0);
  }
}

TEST_F(RegCloseKeyTest, LeavesOtherHandlesOfTheKeyOpen) {
  OpenKey first;
  OpenKey second;
  ASSERT_EQ(first.Make(own_, TEXT("A")), 0);
  ASSERT_EQ(second.Open(own_, TEXT("A")), 0);
  EXPECT_EQ(first.Close(), 0);
  EXPECT_EQ(second.Set(TEXT("Level"), {1}), 0);
}

TEST_F(RegQueryValueExTest, GivesTypeAndBytesAsTheyWereSet) {
  for (const DWORD type : {DWORD{0}, DWORD{REG_SZ}, DWORD{REG_BINARY}, DWORD{REG_DWORD}, DWORD{7}, DWORD{0x12345678}}) {
    const Bytes data = {1, 0, 2, static_cast<BYTE>(type)};
    ASSERT_EQ(own_.Set(TEXT("Level"), data, type), 0);
    Bytes got;
    DWORD got_type = 99;
    EXPECT_EQ(own_.Get(TEXT("level"), &got, &got_type), 0);
    EXPECT_EQ(got, data);
    EXPECT_EQ(got_type, type);
  }
}

TEST_F(RegQueryValueExTest, TellsTheSizeWithoutABuffer) {
  ASSERT_EQ(own_.Set(TEXT("Level"), Bytes(44)), 0);
  DWORD type = 0;
  DWORD size = 0;
  EXPECT_EQ(RegQueryValueExW(own_, TEXT("Level"), nullptr, &type, nullptr, &size), 0);
  EXPECT_EQ(type, DWORD{REG_BINARY});
  EXPECT_EQ(size, 44u);
  EXPECT_EQ(RegQueryValueExW(own_, TEXT("Level"), nullptr, nullptr, nullptr, nullptr), 0);
}

TEST_F(RegQueryValueExTest, ATooSmallBufferIs234WithTheSizeNeeded) {
  ASSERT_EQ(own_.Set(TEXT("Level"), {1, 2, 3}), 0);
  BYTE data[3] = {};
  DWORD type = 0;
  DWORD size = 2;
  EXPECT_EQ(RegQueryValueExW(own_, TEXT("Level"), nullptr, &type, data, &size), Code(ERROR_MORE_DATA));
  EXPECT_EQ(size, 3u);
  EXPECT_EQ(type, DWORD{REG_BINARY});
  EXPECT_EQ(RegQueryValueExW(own_, TEXT("Level"), nullptr, nullptr, data, &size), 0);
  EXPECT_EQ(data[2], 3);
}

TEST_F(RegQueryValueExTest, AMissingValueIs2) {
  Bytes data;
  EXPECT_EQ(own_.Get(TEXT("Level"), &data), Code(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(own_.Get(nullptr, &data), Code(ERROR_FILE_NOT_FOUND));
}

TEST_F(RegQueryValueExTest, NoNameAndAnEmptyOneAreTheDefaultValue) {
  ASSERT_EQ(own_.Set(nullptr, {1}), 0);
  Bytes data;
  EXPECT_EQ(own_.Get(TEXT(""), &data), 0);
  EXPECT_EQ(data, Bytes{1});
  EXPECT_EQ(RegDeleteValueW(own_, nullptr), 0);
  EXPECT_EQ(own_.Get(TEXT(""), &data), Code(ERROR_FILE_NOT_FOUND));
}

TEST_F(RegQueryValueExTest, RefusesAReservedArgumentAndABufferOfUnknownSize) {
  ASSERT_EQ(own_.Set(TEXT("Level"), {1}), 0);
  BYTE data = 0;
  DWORD size = 1;
  EXPECT_EQ(RegQueryValueExW(own_, TEXT("Level"), &size, nullptr, &data, &size), Code(ERROR_INVALID_PARAMETER));
  EXPECT_EQ(RegQueryValueExW(own_, TEXT("Level"), nullptr, nullptr, &data, nullptr), Code(ERROR_INVALID_PARAMETER));
}

TEST_F(RegSetValueExTest, ReplacesTheValueBefore) {
  ASSERT_EQ(own_.Set(TEXT("Level"), {1, 2, 3}), 0);
  ASSERT_EQ(own_.Set(TEXT("LEVEL"), {4}, 9), 0);
  Bytes data;
  DWORD type = 0;
  EXPECT_EQ(own_.Get(TEXT("Level"), &data, &type), 0);
  EXPECT_EQ(data, Bytes{4});
  EXPECT_EQ(type, 9u);
}

TEST_F(RegSetValueExTest, TakesFromNoneTo4096Bytes) {
  for (const std::size_t size : {0, 1, 4095, 4096}) {
    ASSERT_EQ(own_.Set(TEXT("Level"), Bytes(size, 0xA5)), 0);
    Bytes data;
    EXPECT_EQ(own_.Get(TEXT("Level"), &data), 0);
    EXPECT_EQ(data, Bytes(size, 0xA5));
  }
}

TEST_F(RegSetValueExTest, TakesAValueNameOf255Characters) {
  const std::basic_string<WCHAR> name(255, 'V');
  EXPECT_EQ(own_.Set(name.c_str(), {1}), 0);
}

TEST_F(RegSetValueExTest, ManyThreadsSetAtOnce) {
  constexpr BYTE kThreads = 4;
  std::vector<std::thread> threads;
  for (BYTE number = 0; number < kThreads; ++number) {
    threads.emplace_back([this, number] {
      const WCHAR name[] = {static_cast<WCHAR>('a' + number), 0};
      for (BYTE round = 0; round < 100; ++round) EXPECT_EQ(own_.Set(name, {number, round}), 0);
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (BYTE number = 0; number < kThreads; ++number) {
    const WCHAR name[] = {static_cast<WCHAR>('a' + number), 0};
    Bytes data;
    EXPECT_EQ(own_.Get(name, &data), 0);
    EXPECT_EQ(data, (Bytes{number, 99}));
  }
}

TEST_F(RegDeleteValueTest, RemovesOneValueOnly) {
  ASSERT_EQ(own_.Set(TEXT("Level"), {1}), 0);
  ASSERT_EQ(own_.Set(TEXT("Name"), {2}), 0);
  EXPECT_EQ(RegDeleteValueW(own_, TEXT("LEVEL")), 0);
  EXPECT_EQ(RegDeleteValueW(own_, TEXT("Level")), Code(ERROR_FILE_NOT_FOUND));
  Bytes data;
  EXPECT_EQ(own_.Get(TEXT("Name"), &data), 0);
}

TEST_F(RegDeleteKeyTest, RemovesTheKeyWithItsValues) {
  OpenKey key;
  ASSERT_EQ(key.Make(own_, TEXT("A")), 0);
  ASSERT_EQ(key.Set(TEXT("Level"), {1}), 0);
  EXPECT_EQ(RegDeleteKeyW(own_, TEXT("a")), 0);
  EXPECT_EQ(OpenKey().Open(own_, TEXT("A")), Code(ERROR_FILE_NOT_FOUND));
}

TEST_F(RegDeleteKeyTest, AMissingKeyIs2) {
  EXPECT_EQ(RegDeleteKeyW(own_, TEXT("A")), Code(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(RegDeleteKeyW(HKEY_CURRENT_USER, QXTEST_KEY TEXT("\\A\\B")), Code(ERROR_FILE_NOT_FOUND));
}

TEST_F(RegDeleteKeyTest, HandlesOfADeletedKeySaySoEvenWhenItIsMadeAnew) {
  OpenKey old;
  OpenKey anew;
  ASSERT_EQ(old.Make(own_, TEXT("A")), 0);
  ASSERT_EQ(RegDeleteKeyW(own_, TEXT("A")), 0);
  ASSERT_EQ(anew.Make(own_, TEXT("A")), 0);
  ASSERT_EQ(anew.Set(TEXT("Level"), {1}), 0);
  Bytes data;
  EXPECT_EQ(old.Get(TEXT("Level"), &data), Code(ERROR_KEY_DELETED));
  EXPECT_EQ(old.Set(TEXT("Level"), {2}), Code(ERROR_KEY_DELETED));
  EXPECT_EQ(RegDeleteValueW(old, TEXT("Level")), Code(ERROR_KEY_DELETED));
  EXPECT_EQ(OpenKey().Make(old, TEXT("B")), Code(ERROR_KEY_DELETED));
  EXPECT_EQ(OpenKey().Open(old, TEXT("B")), Code(ERROR_KEY_DELETED));
  EXPECT_EQ(RegDeleteKeyW(old, TEXT("B")), Code(ERROR_KEY_DELETED));
  EXPECT_EQ(old.Close(), 0);
  EXPECT_EQ(anew.Get(TEXT("Level"), &data), 0);
}

}  // namespace
}  // namespace platform_test
