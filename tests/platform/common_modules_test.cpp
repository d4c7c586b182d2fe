// Libraries that the instrument loads, and their procedures by ordinal.
#include <gtest/gtest.h>
#include <windows.h>

#include "common/calls/calls.h"
#include "common/calls/ce_calls.h"
#include "common/system/modules.h"

namespace platform_test {
namespace {

intptr_t WINAPI First() { return 1; }
intptr_t WINAPI Second() { return 2; }

class Modules : public testing::Test {
 protected:
  Modules() {
    host::RegisterProcedure("TestLibrary.dll", 5, First);
    host::RegisterProcedure("TestLibrary.dll", 65535, Second);
  }
  ~Modules() override { host::UnregisterModule("TestLibrary.dll"); }
};

TEST_F(Modules, AreFoundInAnyLetterCaseWithOrWithoutTheEnding) {
  const HMODULE module = GetModuleHandleW(TEXT("TestLibrary.dll"));
  ASSERT_NE(module, nullptr);
  EXPECT_EQ(GetModuleHandleW(TEXT("TESTLIBRARY.DLL")), module);
  EXPECT_EQ(GetModuleHandleW(TEXT("testlibrary")), module);
}

TEST_F(Modules, AreNotFoundByAnotherName) {
  for (const LPCWSTR name :
       {TEXT(""), TEXT("TestLibrary.exe"), TEXT("TestLibrary."), TEXT("Test"), TEXT("\\Windows\\TestLibrary.dll")}) {
    EXPECT_EQ(GetModuleHandleW(name), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_MOD_NOT_FOUND});
  }
  EXPECT_EQ(GetModuleHandleW(nullptr), nullptr);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
}

TEST_F(Modules, GiveTheirProceduresByOrdinal) {
  const HMODULE module = GetModuleHandleW(TEXT("TestLibrary"));
  EXPECT_EQ(GetProcAddressW(module, MAKEINTRESOURCEW(5))(), 1);
  EXPECT_EQ(GetProcAddressW(module, MAKEINTRESOURCEW(65535))(), 2);
}

TEST_F(Modules, HaveNoOtherProcedures) {
  const HMODULE module = GetModuleHandleW(TEXT("TestLibrary"));
  for (const LPCWSTR name :
       {LPCWSTR{MAKEINTRESOURCEW(6)}, LPCWSTR{MAKEINTRESOURCEW(0)}, LPCWSTR{TEXT("First")}, LPCWSTR{TEXT("")}}) {
    EXPECT_EQ(GetProcAddressW(module, name), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_PROC_NOT_FOUND});
  }
}

TEST_F(Modules, AreGoneWhenTheyAreUnloaded) {
  const HMODULE module = GetModuleHandleW(TEXT("TestLibrary"));
  host::UnregisterModule("testlibrary.dll");
  EXPECT_EQ(GetModuleHandleW(TEXT("TestLibrary")), nullptr);
  for (const HMODULE gone : {module, HMODULE{}}) {
    EXPECT_EQ(GetProcAddressW(gone, MAKEINTRESOURCEW(5)), nullptr);
    EXPECT_EQ(GetLastError(), DWORD{ERROR_MOD_NOT_FOUND});
  }
}

TEST_F(Modules, LetFaultsReachThem) {
  const HMODULE module = GetModuleHandleW(TEXT("TestLibrary"));
  for (const char* call : {"GetModuleHandleW", "GetProcAddressW"}) {
    host::Fault fault;
    fault.library = "COREDLL";
    fault.call = call;
    fault.error = ERROR_NOT_ENOUGH_MEMORY;
    host::AddFault(fault);
  }
  EXPECT_EQ(GetModuleHandleW(TEXT("TestLibrary")), nullptr);
  EXPECT_EQ(GetProcAddressW(module, MAKEINTRESOURCEW(5)), nullptr);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_NOT_ENOUGH_MEMORY});
  EXPECT_NE(GetProcAddressW(module, MAKEINTRESOURCEW(5)), nullptr);
  host::ClearFaults();
}

}  // namespace
}  // namespace platform_test
