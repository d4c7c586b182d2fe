// Libraries that the program has really loaded, beside what has been registered.
#include <gtest/gtest.h>
#include <windows.h>

#include "common/calls/ce_calls.h"
#include "common/system/modules.h"

namespace platform_test {
namespace {

intptr_t WINAPI Registered() { return 7; }

/// QxSystem.dll as the library has it: loaded, with its calls by ordinal.
class SystemLibrary : public testing::Test {
 protected:
  SystemLibrary() : library_(LoadLibraryA("QxSystem.dll")) {}
  ~SystemLibrary() override { FreeLibrary(library_); }

  const HMODULE library_;
};

TEST_F(SystemLibrary, IsFoundWithItsProceduresByOrdinalOnly) {
  ASSERT_NE(library_, nullptr);
  const HMODULE found = GetModuleHandleW(TEXT("qxsystem"));
  EXPECT_EQ(found, library_);
  EXPECT_NE(GetProcAddressW(found, MAKEINTRESOURCEW(1)), nullptr);
  EXPECT_EQ(GetProcAddressW(found, TEXT("QxSystemQueryBattery")), nullptr);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_PROC_NOT_FOUND});
}

TEST_F(SystemLibrary, HasWhatIsRegisteredForItToo) {
  host::RegisterProcedure("QxSystem.dll", 60000, Registered);
  const HMODULE found = GetModuleHandleW(TEXT("QxSystem.dll"));
  EXPECT_EQ(found, library_);
  EXPECT_EQ(GetProcAddressW(found, MAKEINTRESOURCEW(60000))(), 7);
  EXPECT_NE(GetProcAddressW(found, MAKEINTRESOURCEW(1)), nullptr);
  EXPECT_EQ(GetProcAddressW(found, MAKEINTRESOURCEW(60001)), nullptr);
}

TEST_F(SystemLibrary, IsGoneForTheInstrumentWhenItIsUnloadedThere) {
  host::RegisterProcedure("QxSystem.dll", 60000, Registered);
  host::UnregisterModule("QxSystem.dll");
  EXPECT_EQ(GetModuleHandleW(TEXT("QxSystem.dll")), nullptr);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_MOD_NOT_FOUND});
  EXPECT_EQ(GetProcAddressW(library_, MAKEINTRESOURCEW(1)), nullptr);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_MOD_NOT_FOUND});
  host::RegisterProcedure("QxSystem.dll", 60000, Registered);
  EXPECT_EQ(GetModuleHandleW(TEXT("QxSystem.dll")), library_);
}

TEST_F(SystemLibrary, OfTheSystemIsFoundByNameAndNumber) {
  const HMODULE kernel = GetModuleHandleW(TEXT("KERNEL32.DLL"));
  ASSERT_NE(kernel, nullptr);
  EXPECT_NE(GetProcAddressW(kernel, TEXT("GetTickCount")), nullptr);
  EXPECT_EQ(GetProcAddressW(reinterpret_cast<HMODULE>(this), TEXT("GetTickCount")), nullptr);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_MOD_NOT_FOUND});
}

}  // namespace
}  // namespace platform_test
