// What starting a program leaves on this host: a record, and nothing that runs.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "common/calls/calls.h"
#include "common/kernel/handles.h"
#include "common/system/power.h"
#include "common/system/programs.h"
#include "program_file.h"

namespace platform_test {
namespace {

constexpr LPCWSTR kProgram = TEXT("\\Programs\\Level.exe");

class StartedProgramsTest : public testing::Test {
 protected:
  StartedProgramsTest() { host::ForgetStartedPrograms(); }
  ~StartedProgramsTest() override {
    host::ForgetStartedPrograms();
    host::RecordPowerState(host::kPowerOn);
  }

  static BOOL Start(LPCWSTR program, host::WideString command_line = {}, LPPROCESS_INFORMATION process = nullptr) {
    return CreateProcessW(program, command_line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, nullptr, process);
  }
  static DWORD ErrorOf(BOOL result) {
    EXPECT_FALSE(result);
    return GetLastError();
  }

  const ProgramFile program_{kProgram};
};

TEST_F(StartedProgramsTest, AreRecordedWithTheirCommandLineAndNumber) {
  PROCESS_INFORMATION process = {};
  ASSERT_TRUE(Start(kProgram, TEXT("-a \u00E4"), &process));
  const auto started = host::StartedPrograms();
  ASSERT_EQ(started.size(), 1u);
  EXPECT_EQ(started[0].program, kProgram);
  EXPECT_EQ(started[0].command_line, TEXT("-a \u00E4"));
  EXPECT_EQ(started[0].id, process.dwProcessId);
  EXPECT_GT(started[0].at, 0);
  for (const HANDLE handle : {process.hThread, process.hProcess}) EXPECT_TRUE(CloseHandle(handle));
}

TEST_F(StartedProgramsTest, AreNotRecordedWhenTheyAreMissing) {
  EXPECT_EQ(ErrorOf(Start(TEXT("\\Programs\\Other.exe"))), DWORD{ERROR_FILE_NOT_FOUND});
  EXPECT_TRUE(host::StartedPrograms().empty());
}

TEST_F(StartedProgramsTest, RunOnAsLongAsTheInstrument) {
  PROCESS_INFORMATION process = {};
  ASSERT_TRUE(Start(kProgram, {}, &process));
  const HANDLE both[] = {process.hProcess, process.hThread};
  EXPECT_EQ(WaitForMultipleObjects(2, both, FALSE, 10), WAIT_TIMEOUT);
  for (const HANDLE handle : both) EXPECT_TRUE(CloseHandle(handle));
  EXPECT_EQ(WaitForSingleObject(process.hProcess, 0), WAIT_FAILED);
}

TEST_F(StartedProgramsTest, NeedNobodyWhoTakesTheHandles) {
  const std::size_t before = host::LibraryHandles();
  EXPECT_TRUE(Start(kProgram));
  EXPECT_EQ(host::LibraryHandles(), before);
  EXPECT_EQ(host::StartedPrograms().size(), 1u);
}

TEST_F(StartedProgramsTest, AreLookedForInTheWindowsFolderByTheirBareName) {
  const ProgramFile windows(TEXT("\\Windows\\Level.exe"));
  ASSERT_TRUE(Start(TEXT("Level.exe")));
  EXPECT_EQ(ErrorOf(Start(TEXT("\\Level.exe"))), DWORD{ERROR_FILE_NOT_FOUND});
  EXPECT_EQ(host::StartedPrograms().back().program, TEXT("Level.exe"));
}

TEST_F(StartedProgramsTest, AreMissingOnAnInstrumentWithoutFiles) {
  host::SetProgramLookup(nullptr);
  EXPECT_EQ(ErrorOf(Start(kProgram)), DWORD{ERROR_FILE_NOT_FOUND});
}

TEST_F(StartedProgramsTest, AreKeptUpToANumber) {
  for (std::size_t i = 0; i < host::kMostStartedPrograms + 3; ++i) {
    const std::string number = std::to_string(i);
    ASSERT_TRUE(Start(kProgram, host::WideString(number.begin(), number.end())));
  }
  const auto started = host::StartedPrograms();
  EXPECT_EQ(started.size(), host::kMostStartedPrograms);
  EXPECT_EQ(started.front().command_line, TEXT("3"));
}

TEST_F(StartedProgramsTest, CannotBeNamedAtAnyLength) {
  EXPECT_EQ(ErrorOf(Start(host::WideString(MAX_PATH, TEXT('x')).c_str())), DWORD{ERROR_FILENAME_EXCED_RANGE});
  EXPECT_EQ(ErrorOf(Start(kProgram, host::WideString(32768, TEXT('x')))), DWORD{ERROR_FILENAME_EXCED_RANGE});
  EXPECT_TRUE(Start(kProgram, host::WideString(32767, TEXT('x'))));
}

TEST_F(StartedProgramsTest, TakeOnlyWhatWindowsCeKnows) {
  const auto create = [](LPCWSTR program, LPSECURITY_ATTRIBUTES security, BOOL inherit, DWORD flags, LPVOID environment,
                         LPCWSTR folder) {
    return CreateProcessW(program, nullptr, security, nullptr, inherit, flags, environment, folder, nullptr, nullptr);
  };
  SECURITY_ATTRIBUTES security = {};
  EXPECT_EQ(ErrorOf(create(nullptr, nullptr, FALSE, 0, nullptr, nullptr)), DWORD{ERROR_INVALID_PARAMETER});
  EXPECT_EQ(ErrorOf(create(kProgram, &security, FALSE, 0, nullptr, nullptr)), DWORD{ERROR_INVALID_PARAMETER});
  EXPECT_EQ(ErrorOf(create(kProgram, nullptr, TRUE, 0, nullptr, nullptr)), DWORD{ERROR_INVALID_PARAMETER});
  EXPECT_EQ(ErrorOf(create(kProgram, nullptr, FALSE, 0x20, nullptr, nullptr)), DWORD{ERROR_INVALID_PARAMETER});
  EXPECT_EQ(ErrorOf(create(kProgram, nullptr, FALSE, 0, &security, nullptr)), DWORD{ERROR_INVALID_PARAMETER});
  EXPECT_EQ(ErrorOf(create(kProgram, nullptr, FALSE, 0, nullptr, TEXT("\\"))), DWORD{ERROR_INVALID_PARAMETER});
  EXPECT_TRUE(create(kProgram, nullptr, FALSE, CREATE_SUSPENDED, nullptr, nullptr));
}

TEST_F(StartedProgramsTest, TheUtilityIsAlwaysThereAndSwitchesOff) {
  host::SetProgramLookup(nullptr);
  EXPECT_TRUE(Start(TEXT("opvutil.exe"), TEXT("-status")));
  EXPECT_EQ(host::PowerState(), host::kPowerOn);
  EXPECT_TRUE(Start(TEXT("\\Windows\\OpvUtil.exe"), TEXT("-FullOff")));
  EXPECT_EQ(host::PowerState(), host::kPowerOff);
  EXPECT_EQ(host::StartedPrograms().size(), 2u);
}

TEST_F(StartedProgramsTest, AreListedWithTheirTexts) {
  host::EnableCallLog(true);
  std::uint64_t since = 0;
  host::CallsSince(0, &since);
  Start(kProgram, TEXT("-a"));
  const auto calls = host::CallsSince(since, nullptr);
  host::EnableCallLog(false);
  ASSERT_EQ(calls.size(), 1u);
  const std::vector<host::CallValue> args = {"\\Programs\\Level.exe", "-a",    nullptr, nullptr, std::int64_t{0},
                                             std::int64_t{0},         nullptr, nullptr, nullptr, nullptr};
  EXPECT_EQ(calls[0].args, args);
  EXPECT_EQ(calls[0].result, host::CallValue(std::int64_t{1}));
}

TEST_F(StartedProgramsTest, CanBeMadeToFail) {
  host::Fault fault;
  fault.library = "COREDLL";
  fault.call = "CreateProcessW";
  fault.error = ERROR_NOT_ENOUGH_MEMORY;
  fault.on = "\\Programs\\Level.exe";
  host::AddFault(fault);
  EXPECT_EQ(ErrorOf(Start(kProgram)), DWORD{ERROR_NOT_ENOUGH_MEMORY});
  host::ClearFaults();
  EXPECT_TRUE(host::StartedPrograms().empty());
}

}  // namespace
}  // namespace platform_test
