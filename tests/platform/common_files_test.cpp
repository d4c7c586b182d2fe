// Files on any host: many, large, shared by threads; what is not offered; the call log and faults.
#include <chrono>
#include <string>
#include <thread>

#include "common/calls/calls.h"
#include "instrument_files.h"
#include "support/this_machine.h"

namespace platform_test {
namespace {

using FileLog = InstrumentFiles;

TEST_F(InstrumentFiles, ManyThreadsOnTheSameNamesLeaveNothingOpen) {
  const WideString names[] = {TEXT("a"), TEXT("B"), TEXT("b"), TEXT("sub\\a")};
  MakeFolder(TEXT("sub"));
  const auto run = [&](unsigned seed) {
    for (unsigned i = 0; i < 400; ++i) {
      const WideString &from = names[(seed + i) % 4], &to = names[(seed + i * 7 / 3) % 4];
      if (const HANDLE file = Create(from); file != INVALID_HANDLE_VALUE) {
        WriteBytes(file, "text");
        CloseHandle(file);
      }
      Copy(from, to);
      Move(to, from);
      SearchNames(Path(TEXT("*")));
      Delete(to);
    }
  };
  std::vector<std::thread> threads;
  for (unsigned seed = 0; seed < 4; ++seed) threads.emplace_back(run, seed);
  for (std::thread& thread : threads) thread.join();
  for (const WideString& name : names) EXPECT_TRUE(Delete(name) || GetLastError() == ERROR_FILE_NOT_FOUND);
  EXPECT_TRUE(Remove(TEXT("sub")));
}

TEST_F(InstrumentFiles, ListsALargeFileWithItsWholeSize) {
  MakeHostFile("large");
  fs::resize_file(HostPath("large"), std::uintmax_t{5} << 30);
  const WIN32_FIND_DATAW found = Search(Path(TEXT("large"))).at(0);
  EXPECT_EQ(found.nFileSizeHigh, 1u);
  EXPECT_EQ(found.nFileSizeLow, 1u << 30);
}

TEST_F(InstrumentFiles, RefusesWhatIsNotOffered) {
  const auto open = [&](DWORD access, DWORD share, DWORD disposition, DWORD flags) {
    return Error(CreateFileW(Path(TEXT("a")).c_str(), access, share, nullptr, disposition, flags, nullptr));
  };
  for (const DWORD disposition : {2u, 4u, 5u}) {
    EXPECT_EQ(open(kBothWays, 0, disposition, 0), DWORD{ERROR_NOT_SUPPORTED});
  }
  EXPECT_EQ(open(kBothWays, 0, CREATE_NEW, 0x04000000), DWORD{ERROR_NOT_SUPPORTED});
  EXPECT_EQ(open(0, 0, CREATE_NEW, 0), DWORD{ERROR_INVALID_PARAMETER});
  EXPECT_EQ(open(kBothWays, 4, CREATE_NEW, 0), DWORD{ERROR_INVALID_PARAMETER});
  EXPECT_FALSE(Exists(TEXT("a")));
}

TEST_F(InstrumentFiles, SearchesNeedAPlaceForTheResult) {
  MakeFile(TEXT("a"));
  WIN32_FIND_DATAW found;
  EXPECT_EQ(Error(FindFirstFileW(Path(TEXT("a")).c_str(), nullptr)), DWORD{ERROR_INVALID_PARAMETER});
  const HANDLE search = FindFirstFileW(Path(TEXT("a")).c_str(), &found);
  EXPECT_EQ(Error(FindNextFileW(search, nullptr) != FALSE), DWORD{ERROR_INVALID_PARAMETER});
  FindClose(search);
}

TEST_F(InstrumentFiles, EndlessPatternsAreAnsweredAtOnce) {
  MakeFile(WideString(100, TEXT('a')));
  WideString pattern;
  for (int i = 0; i < 100; ++i) pattern += TEXT("*a");
  EXPECT_EQ(SearchNames(Path(pattern)).size(), 1u);
  EXPECT_TRUE(SearchNames(Path(pattern + TEXT("b"))).empty());
}

// Ten times the entries take ten times as long, not a hundred times; the machine may be busy in between.
TEST_F(InstrumentFiles, TenThousandEntriesAreListedInTime) {
  const auto seconds_to_list = [&](std::size_t entries) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(All().size(), entries);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  };
  const fs::path folder = fs::u8path(folder_.host_path());
  qxtest::MakeManyFiles(folder, 1000);
  const double few = seconds_to_list(1000);
  qxtest::MakeManyFiles(folder, 10000);
  const double many = seconds_to_list(10000);
  EXPECT_LT(many, 40 * few);
  RecordProperty("milliseconds", static_cast<int>(many * 1000));
}

TEST_F(FileLog, ListsWhatIsDoneWithFilesAndFaultsReachIt) {
  host::EnableCallLog(true);
  std::uint64_t start = 0;
  host::CallsSince(0, &start);
  MakeFile(TEXT("a"));
  SearchNames(Path(TEXT("*")));
  Delete(TEXT("a"));
  std::vector<std::string> names;
  for (const host::CallRecord& call : host::CallsSince(start, nullptr))
    names.push_back(std::get<std::string>(call.call));
  host::EnableCallLog(false);
  EXPECT_EQ(names, (std::vector<std::string>{"CreateFileW", "WriteFile", "CloseHandle", "FindFirstFileW",
                                             "FindNextFileW", "FindClose", "DeleteFileW"}));
}

TEST_F(FileLog, FaultsAreLimitedToAPathOrASearch) {
  const auto fail = [](const char* call, const char* on) {
    host::Fault fault;
    fault.library = "COREDLL";
    fault.call = std::string(call);
    fault.error = 112;
    fault.on = on;
    host::AddFault(fault);
  };
  MakeFile(TEXT("a"));
  MakeFile(TEXT("b"));
  fail("WriteFile", "/scratch/A");
  fail("FindNextFileW", "\\Scratch\\*");
  const HANDLE a = Open(TEXT("a")), b = Open(TEXT("b"));
  EXPECT_TRUE(WriteBytes(b, "x"));
  EXPECT_EQ(Error(WriteBytes(a, "x")), 112u);
  WIN32_FIND_DATAW found;
  const HANDLE search = FindFirstFileW(Path(TEXT("*")).c_str(), &found);
  EXPECT_EQ(Error(FindNextFileW(search, &found) != FALSE), 112u);
  for (const HANDLE handle : {a, b}) CloseHandle(handle);
  FindClose(search);
  host::ClearFaults();
}

}  // namespace
}  // namespace platform_test
