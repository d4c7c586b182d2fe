// Starting a program, and libraries that are loaded.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "program_file.h"

namespace platform_test {
namespace {

using WideText = std::basic_string<WCHAR>;

constexpr LPCWSTR kProgram = TEXT("\\Programs\\Level.exe");

BOOL Start(LPCWSTR program, PROCESS_INFORMATION* process, WideText command_line = {}) {
  return CreateProcessW(program, command_line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, nullptr, process);
}

DWORD ErrorOfStarting(LPCWSTR program) {
  PROCESS_INFORMATION process = {};
  SetLastError(ERROR_SUCCESS);
  EXPECT_FALSE(Start(program, &process));
  return GetLastError();
}

class StartingAProgram : public testing::Test {
 protected:
  const ProgramFile program_{kProgram};
};

TEST_F(StartingAProgram, GivesTwoHandlesAndTwoNumbers) {
  PROCESS_INFORMATION process = {};
  ASSERT_TRUE(Start(kProgram, &process, TEXT("-a \"b c\"")));
  EXPECT_NE(process.hProcess, nullptr);
  EXPECT_NE(process.hThread, nullptr);
  EXPECT_NE(process.hProcess, process.hThread);
  EXPECT_NE(process.dwProcessId, 0u);
  EXPECT_NE(process.dwThreadId, 0u);
  EXPECT_TRUE(CloseHandle(process.hThread));
  EXPECT_TRUE(CloseHandle(process.hProcess));
}

TEST_F(StartingAProgram, NeedsNoCommandLine) {
  PROCESS_INFORMATION process = {};
  ASSERT_TRUE(CreateProcessW(kProgram, nullptr, nullptr, nullptr, FALSE, 0, nullptr, nullptr, nullptr, &process));
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
}

TEST_F(StartingAProgram, NumbersEachAnew) {
  PROCESS_INFORMATION first = {}, second = {};
  ASSERT_TRUE(Start(kProgram, &first));
  ASSERT_TRUE(Start(kProgram, &second));
  EXPECT_NE(first.dwProcessId, second.dwProcessId);
  for (const HANDLE handle : {first.hThread, first.hProcess, second.hThread, second.hProcess}) CloseHandle(handle);
}

TEST_F(StartingAProgram, FailsForOneThatIsMissing) {
  EXPECT_EQ(ErrorOfStarting(TEXT("\\Programs\\Other.exe")), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(ErrorOfStarting(TEXT("other.exe")), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
}

TEST_F(StartingAProgram, FailsForAFolderThatIsMissing) {
  EXPECT_EQ(ErrorOfStarting(TEXT("\\Elsewhere\\Level.exe")), static_cast<DWORD>(ERROR_PATH_NOT_FOUND));
}

TEST_F(StartingAProgram, FailsForAFolder) {
  EXPECT_EQ(ErrorOfStarting(TEXT("\\Programs")), static_cast<DWORD>(ERROR_ACCESS_DENIED));
}

TEST(LoadedLibrary, IsNotThereWhenNobodyLoadedIt) {
  SetLastError(ERROR_SUCCESS);
  EXPECT_EQ(GetModuleHandleW(TEXT("NoSuchLibrary.dll")), nullptr);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
}

}  // namespace
}  // namespace platform_test
