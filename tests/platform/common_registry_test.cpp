// The registry of this host: where it follows Windows CE and not the desktop, its own limits, and who keeps it.
#include <algorithm>
#include <cstring>
#include <iterator>

#include "common/calls/calls.h"
#include "common/kernel/handles.h"
#include "common/registry/registry.h"
#include "common/registry/time_zones.h"
#include "kernel_objects.h"
#include "open_key.h"

namespace platform_test {
namespace {

using host::Registry;
using host::RegistryContent;

class HostRegistryTest : public RegistryTest {
 protected:
  ~HostRegistryTest() override {
    Registry::Instance().SetKeeper(nullptr);
    Registry::Instance().Replace(host::DefaultRegistry());
    host::ClearFaults();
    host::EnableCallLog(false);
  }

  /// From now on every change is refused with this error.
  void Refuse(DWORD error) {
    Registry::Instance().SetKeeper([error](const RegistryContent&) { return error; });
  }
};

using RegistryKeeperTest = HostRegistryTest;
using RegistryCallsTest = HostRegistryTest;
using RegistryDefaultsTest = HostRegistryTest;

host::WideString Chain(std::size_t levels) {
  host::WideString path;
  for (std::size_t level = 0; level < levels; ++level) path += level == 0 ? TEXT("L") : TEXT("\\L");
  return path;
}

TEST_F(HostRegistryTest, DeletingAKeyDeletesWhatIsUnderIt) {
  OpenKey deep;
  ASSERT_EQ(deep.Make(own_, TEXT("A\\B\\C")), 0);
  EXPECT_EQ(RegDeleteKeyW(own_, TEXT("A")), 0);
  EXPECT_EQ(deep.Set(TEXT("Level"), {1}), Code(ERROR_KEY_DELETED));
  EXPECT_EQ(OpenKey().Open(own_, TEXT("A")), Code(ERROR_FILE_NOT_FOUND));
}

TEST_F(HostRegistryTest, RootsCannotBeDeleted) {
  for (const HKEY root : {HKEY_CLASSES_ROOT, HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE, HKEY_USERS}) {
    EXPECT_EQ(RegDeleteKeyW(root, TEXT("")), Code(ERROR_ACCESS_DENIED));
    EXPECT_EQ(RegDeleteKeyW(root, nullptr), Code(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(RegDeleteKeyW(root, TEXT("\\")), Code(ERROR_BAD_PATHNAME));
  }
  EXPECT_EQ(OpenKey().Open(HKEY_CURRENT_USER, QXTEST_KEY), 0);
}

TEST_F(HostRegistryTest, AnEmptyPathDeletesTheOpenKeyItself) {
  EXPECT_EQ(RegDeleteKeyW(own_, TEXT("")), 0);
  EXPECT_EQ(OpenKey().Open(HKEY_CURRENT_USER, QXTEST_KEY), Code(ERROR_FILE_NOT_FOUND));
}

TEST_F(HostRegistryTest, KeysCanBeMadeRightUnderEveryRoot) {
  for (const HKEY root : {HKEY_CLASSES_ROOT, HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE, HKEY_USERS}) {
    EXPECT_EQ(OpenKey().Make(root, TEXT("QXTest")), 0);
    EXPECT_EQ(RegDeleteKeyW(root, TEXT("QXTest")), 0);
  }
}

TEST_F(HostRegistryTest, ANullPathOpensTheKeyItself) {
  OpenKey opened;
  OpenKey made;
  DWORD disposition = 0;
  EXPECT_EQ(opened.Open(own_, nullptr), 0);
  EXPECT_EQ(made.Make(own_, nullptr, &disposition), 0);
  EXPECT_EQ(disposition, REG_OPENED_EXISTING_KEY);
  EXPECT_EQ(made.Set(TEXT("Level"), {1}), 0);
  Bytes data;
  EXPECT_EQ(opened.Get(TEXT("Level"), &data), 0);
}

TEST_F(HostRegistryTest, APathMustNotBeginWithASeparatorButMayEndWithOne) {
  HKEY key = nullptr;
  EXPECT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, TEXT("\\Software"), 0, KEY_READ, &key), Code(ERROR_BAD_PATHNAME));
  EXPECT_EQ(OpenKey().Make(own_, TEXT("\\A")), Code(ERROR_BAD_PATHNAME));
  EXPECT_EQ(OpenKey().Make(own_, TEXT("A\\\\B\\")), 0);
  EXPECT_EQ(OpenKey().Open(own_, TEXT("A\\B")), 0);
}

TEST_F(HostRegistryTest, OpeningTakesNoOptions) {
  HKEY key = nullptr;
  EXPECT_EQ(RegOpenKeyExW(own_, TEXT(""), 8, KEY_READ, &key), Code(ERROR_INVALID_PARAMETER));
}

TEST_F(HostRegistryTest, KeysGo16LevelsDeep) {
  const host::WideString deepest = Chain(16);
  EXPECT_EQ(OpenKey().Make(HKEY_USERS, deepest.c_str()), 0);
  EXPECT_EQ(OpenKey().Make(HKEY_USERS, Chain(17).c_str()), Code(ERROR_INVALID_PARAMETER));
  OpenKey key;
  ASSERT_EQ(key.Open(HKEY_USERS, deepest.c_str()), 0);
  EXPECT_EQ(OpenKey().Make(key, TEXT("L")), Code(ERROR_INVALID_PARAMETER));
}

TEST_F(HostRegistryTest, ValuesHaveAtMost4096BytesAndNamesOf255Characters) {
  EXPECT_EQ(own_.Set(TEXT("Level"), Bytes(4097)), Code(ERROR_INVALID_PARAMETER));
  EXPECT_EQ(own_.Set(host::WideString(256, TEXT('V')).c_str(), {1}), Code(ERROR_INVALID_PARAMETER));
  EXPECT_EQ(RegSetValueExW(own_, TEXT("Level"), 0, REG_BINARY, nullptr, 1), Code(ERROR_INVALID_PARAMETER));
  const BYTE byte = 1;
  EXPECT_EQ(RegSetValueExW(own_, TEXT("Level"), 1, REG_BINARY, &byte, 1), Code(ERROR_INVALID_PARAMETER));
  Bytes data;
  EXPECT_EQ(own_.Get(TEXT("Level"), &data), Code(ERROR_FILE_NOT_FOUND));
}

TEST_F(HostRegistryTest, NamesMustBeWellFormedText) {
  const WCHAR half[] = {'A', 0xD800, 0};
  const WCHAR other_half[] = {0xDC00, 'A', 0};
  EXPECT_EQ(OpenKey().Make(own_, half), Code(ERROR_INVALID_PARAMETER));
  EXPECT_EQ(own_.Set(other_half, {1}), Code(ERROR_INVALID_PARAMETER));
  EXPECT_EQ(own_.Set(TEXT("\U0001F4CF"), {1}), 0);
}

TEST_F(HostRegistryTest, RefusesToGrowBeyondItsLimit) {
  host::RegistryEdit edit(Registry::Instance().Content());
  WCHAR name = TEXT(' ');
  while (edit.content().bytes + 5000 <= host::kMostRegistryBytes) {
    edit.SetValue({TEXT("HKCU"), TEXT("Software"), TEXT("QXTest")}, {{++name}, REG_BINARY, Bytes(4096)});
  }
  ASSERT_EQ(Registry::Instance().Replace(edit.content()), ERROR_SUCCESS);
  EXPECT_EQ(own_.Set(TEXT(""), Bytes(800)), 0);
  EXPECT_EQ(own_.Set(TEXT("Level"), Bytes(4096)), Code(ERROR_OUTOFMEMORY));
  EXPECT_EQ(OpenKey().Open(HKEY_CURRENT_USER, QXTEST_KEY), 0);
  EXPECT_EQ(own_.Set(TEXT("!"), {}), 0);
  EXPECT_EQ(own_.Set(TEXT("Level"), Bytes(4000)), 0);
}

TEST_F(HostRegistryTest, WhatIsDeletedMakesRoomAgain) {
  const std::size_t before = Registry::Instance().Content().bytes;
  OpenKey key;
  ASSERT_EQ(key.Make(own_, TEXT("A\\B")), 0);
  ASSERT_EQ(key.Set(TEXT("Level"), Bytes(100)), 0);
  ASSERT_EQ(key.Set(TEXT("Level"), Bytes(50)), 0);
  ASSERT_EQ(key.Set(TEXT("Name"), Bytes(50)), 0);
  ASSERT_EQ(RegDeleteValueW(key, TEXT("Name")), 0);
  EXPECT_EQ(Registry::Instance().Content().bytes, before + 3 * host::kRegistryEntryBytes + 2 * (1 + 1 + 5) + 50);
  ASSERT_EQ(RegDeleteKeyW(own_, TEXT("A")), 0);
  EXPECT_EQ(Registry::Instance().Content().bytes, before);
}

TEST_F(HostRegistryTest, HandlesOfKeysAreClosedByTheirOwnCallOnly) {
  const Handle event = AutoEvent();
  EXPECT_EQ(RegCloseKey(static_cast<HKEY>(static_cast<HANDLE>(event))), Code(ERROR_INVALID_HANDLE));
  SetLastError(0);
  EXPECT_FALSE(CloseHandle(static_cast<HKEY>(own_)));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
  EXPECT_EQ(own_.Set(TEXT("Level"), {1}), 0);
  EXPECT_TRUE(EventModify(event, kEventSet));
}

TEST_F(HostRegistryTest, OpenKeysCountAsTheLibrarysHandles) {
  const std::size_t before = host::LibraryHandles();
  OpenKey key;
  ASSERT_EQ(key.Open(own_, TEXT("")), 0);
  EXPECT_EQ(host::LibraryHandles(), before + 1);
  key.Close();
  EXPECT_EQ(host::LibraryHandles(), before);
}

TEST_F(HostRegistryTest, LeavesTheLastErrorAlone) {
  SetLastError(4711);
  EXPECT_EQ(OpenKey().Open(own_, TEXT("A")), Code(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(OpenKey().Open(nullptr, TEXT("A")), Code(ERROR_INVALID_HANDLE));
  EXPECT_EQ(RegCloseKey(nullptr), Code(ERROR_INVALID_HANDLE));
  EXPECT_EQ(GetLastError(), 4711u);
}

TEST_F(RegistryKeeperTest, ARefusedChangeIsNotMadeAndItsCallReturnsTheError) {
  OpenKey key;
  ASSERT_EQ(key.Make(own_, TEXT("A")), 0);
  ASSERT_EQ(key.Set(TEXT("Level"), {1}), 0);
  Refuse(ERROR_DISK_FULL);
  EXPECT_EQ(key.Set(TEXT("Level"), {2}), Code(ERROR_DISK_FULL));
  EXPECT_EQ(RegDeleteValueW(key, TEXT("Level")), Code(ERROR_DISK_FULL));
  EXPECT_EQ(OpenKey().Make(key, TEXT("B")), Code(ERROR_DISK_FULL));
  EXPECT_EQ(RegDeleteKeyW(own_, TEXT("A")), Code(ERROR_DISK_FULL));
  Bytes data;
  EXPECT_EQ(key.Get(TEXT("Level"), &data), 0);
  EXPECT_EQ(data, Bytes{1});
  EXPECT_EQ(OpenKey().Open(key, TEXT("B")), Code(ERROR_FILE_NOT_FOUND));
}

TEST_F(RegistryKeeperTest, IsNotAskedWhenNothingChanges) {
  ASSERT_EQ(own_.Set(TEXT("Level"), {1}), 0);
  Refuse(ERROR_REGISTRY_IO_FAILED);
  EXPECT_EQ(own_.Set(TEXT("LEVEL"), {1}), 0);
  EXPECT_EQ(OpenKey().Make(HKEY_CURRENT_USER, QXTEST_KEY), 0);
  EXPECT_EQ(RegDeleteValueW(own_, TEXT("Name")), Code(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(RegDeleteKeyW(own_, TEXT("A")), Code(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(own_.Set(TEXT("Level"), {1}, REG_SZ), Code(ERROR_REGISTRY_IO_FAILED));
}

TEST_F(RegistryKeeperTest, NobodySeesAChangeBeforeItIsKept) {
  ASSERT_EQ(own_.Set(TEXT("Level"), {1}), 0);
  Bytes seen;
  Registry::Instance().SetKeeper([&](const RegistryContent&) {
    EXPECT_EQ(own_.Get(TEXT("Level"), &seen), 0);
    return DWORD{0};
  });
  EXPECT_EQ(own_.Set(TEXT("Level"), {2}), 0);
  EXPECT_EQ(seen, Bytes{1});
  EXPECT_EQ(own_.Get(TEXT("Level"), &seen), 0);
  EXPECT_EQ(seen, Bytes{2});
}

TEST_F(RegistryCallsTest, AreListedWithTheirArguments) {
  std::uint64_t start = 0;
  host::EnableCallLog(true);
  host::CallsSince(0, &start);
  OpenKey key;
  ASSERT_EQ(key.Make(HKEY_CURRENT_USER, QXTEST_KEY), 0);
  ASSERT_EQ(key.Set(TEXT("Level"), {1}), 0);
  const auto calls = host::CallsSince(start, nullptr);
  ASSERT_EQ(calls.size(), 2u);
  const auto number = [](std::int64_t value) { return host::CallValue(value); };
  EXPECT_EQ(calls[0].args, (std::vector<host::CallValue>{number(0x80000001), "Software\\QXTest", number(0), nullptr,
                                                         number(0), number(KEY_ALL_ACCESS), nullptr, nullptr}));
  EXPECT_EQ(calls[1].call, host::CallValue("RegSetValueExW"));
  EXPECT_EQ(std::vector<host::CallValue>(calls[1].args.begin() + 1, calls[1].args.end()),
            (std::vector<host::CallValue>{"Level", number(0), number(REG_BINARY), number(1)}));
}

TEST_F(RegistryCallsTest, FailOnOneKeyAsTheFaultSays) {
  ASSERT_EQ(OpenKey().Make(own_, TEXT("A")), 0);
  host::Fault fault;
  fault.library = "COREDLL";
  fault.times = 1000;
  fault.error = ERROR_ACCESS_DENIED;
  fault.on = "HKCU/Software/QXTest/a";
  for (const char* call : {"RegOpenKeyExW", "RegSetValueExW"}) {
    fault.call = call;
    host::AddFault(fault);
  }
  OpenKey key;
  EXPECT_EQ(key.Open(own_, TEXT("A")), Code(ERROR_ACCESS_DENIED));
  EXPECT_EQ(key.Open(HKEY_CURRENT_USER, QXTEST_KEY TEXT("\\A")), Code(ERROR_ACCESS_DENIED));
  EXPECT_EQ(own_.Set(TEXT("Level"), {1}), 0);
  ASSERT_EQ(key.Make(own_, TEXT("A")), 0);
  EXPECT_EQ(key.Set(TEXT("Level"), {1}), Code(ERROR_ACCESS_DENIED));
}

TEST_F(RegistryDefaultsTest, Are75TimeZonesByRisingIndex) {
  const auto zones = host::TimeZones();
  EXPECT_EQ(zones.count, 75u);
  EXPECT_TRUE(std::is_sorted(zones.begin(), zones.end(),
                             [](const auto& left, const auto& right) { return left.index < right.index; }));
  const RegistryContent content = host::DefaultRegistry();
  const auto* keys = host::FindRegistryKey(content, {TEXT("HKLM"), TEXT("Time Zones")});
  ASSERT_NE(keys, nullptr);
  EXPECT_EQ(keys->keys.size(), 75u);
}

TEST_F(RegistryDefaultsTest, HoldAZonesRulesAndNames) {
  OpenKey zone;
  ASSERT_EQ(zone.Open(HKEY_LOCAL_MACHINE, TEXT("Time Zones\\W. Europe Standard Time")), 0);
  Bytes rules;
  DWORD type = 0;
  ASSERT_EQ(zone.Get(TEXT("TZI"), &rules, &type), 0);
  EXPECT_EQ(type, REG_BINARY);
  EXPECT_EQ(
      rules,
      (Bytes{0xC4, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0, 0xC4, 0xFF, 0xFF, 0xFF,                 // -60, 0, -60 minutes
             0,    0,    10,   0,    0, 0, 5, 0, 3,    0,    0,    0,    0, 0, 0, 0,     // last Sunday of October, 3
             0,    0,    3,    0,    0, 0, 5, 0, 2,    0,    0,    0,    0, 0, 0, 0}));  // last Sunday of March, 2
  const host::WideString daylight = TEXT("W. Europe Daylight Time");
  Bytes name;
  ASSERT_EQ(zone.Get(TEXT("Dlt"), &name, &type), 0);
  EXPECT_EQ(type, REG_SZ);
  ASSERT_EQ(name.size(), (daylight.size() + 1) * sizeof(WCHAR));
  EXPECT_EQ(std::memcmp(name.data(), daylight.c_str(), name.size()), 0);
}

TEST(RegistryPathText, NamesAKeyFromItsRootOn) {
  EXPECT_EQ(host::RegistryPathText({TEXT("HKLM"), TEXT("Software"), TEXT("a/b")}), "HKLM/Software/a\\/b");
  EXPECT_EQ(host::ParseRegistryPath("HKLM/Software/a\\/b"),
            (host::RegistryPath{TEXT("HKLM"), TEXT("Software"), TEXT("a/b")}));
  EXPECT_EQ(host::ParseRegistryPath("HKU"), host::RegistryPath{TEXT("HKU")});
}

TEST(RegistryPathText, RefusesWhatNamesNoKey) {
  const std::string deep = "HKLM" + std::string(34, '/');
  for (const std::string& text :
       {std::string(), std::string("HKXX/A"), std::string("hklm/A"), std::string("HKLM/"), std::string("/HKLM"),
        std::string("HKLM//A"), std::string("HKLM/A\\B"), std::string("HKLM/A\\"),
        std::string("HKLM/") + std::string(256, 'A'), std::string("HKLM/A\0B", 8), deep}) {
    EXPECT_EQ(host::ParseRegistryPath(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace platform_test
