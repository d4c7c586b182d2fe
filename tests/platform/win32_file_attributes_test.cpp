// Attributes and times as the system keeps them.
#include "common/system/calendar.h"
#include "common/system/clock.h"
#include "instrument_files.h"
#include "times.h"

namespace platform_test {
namespace {

using SystemAttributes = InstrumentFiles;

constexpr DWORD kArchive = FILE_ATTRIBUTE_ARCHIVE;

TEST_F(SystemAttributes, StayWithTheFile) {
  MakeFile(TEXT("a"));
  host::FileChange change = ReadOnly(true);
  change.hidden = change.system = true;
  ASSERT_EQ(Change(TEXT("a"), change), 0u);
  constexpr DWORD kAll = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | kArchive;
  EXPECT_EQ(Attributes(TEXT("a")), kAll);
  EXPECT_TRUE(Move(TEXT("a"), TEXT("b")));
  EXPECT_EQ(Attributes(TEXT("b")), kAll);
  EXPECT_EQ(Search(Path(TEXT("b"))).at(0).dwFileAttributes, kAll);
}

TEST_F(SystemAttributes, OfAnOpenFileAreChangedToo) {
  const HANDLE file = Create(TEXT("a"));
  host::FileChange change;
  change.hidden = true;
  EXPECT_EQ(Change(TEXT("a"), change), 0u);
  EXPECT_EQ(Attributes(TEXT("a")), DWORD{FILE_ATTRIBUTE_HIDDEN | kArchive});
  CloseHandle(file);
}

TEST_F(SystemAttributes, AReadOnlyFileIsNeitherWrittenNorDeletedNorOverwritten) {
  MakeFile(TEXT("a"), "kept");
  MakeFile(TEXT("b"), "other");
  ASSERT_EQ(Change(TEXT("a"), ReadOnly(true)), 0u);
  EXPECT_EQ(Error(Open(TEXT("a"))), DWORD{ERROR_ACCESS_DENIED});
  EXPECT_EQ(Error(Delete(TEXT("a"))), DWORD{ERROR_ACCESS_DENIED});
  EXPECT_EQ(Error(Copy(TEXT("b"), TEXT("a"), FALSE)), DWORD{ERROR_ACCESS_DENIED});
  EXPECT_EQ(Content(TEXT("a")), "kept");
  EXPECT_TRUE(Move(TEXT("a"), TEXT("c")));
  EXPECT_EQ(Change(TEXT("c"), ReadOnly(false)), 0u);
  EXPECT_TRUE(Delete(TEXT("c")));
}

TEST_F(SystemAttributes, ACopyHasThemAndTheTimeOfTheLastWrite) {
  MakeFile(TEXT("a"), "text");
  host::FileChange change = ReadOnly(true);
  change.hidden = true;
  change.written = FileTime(133511670051234567);
  ASSERT_EQ(Change(TEXT("a"), change), 0u);
  EXPECT_TRUE(Copy(TEXT("a"), TEXT("b")));
  const WIN32_FIND_DATAW source = Search(Path(TEXT("a"))).at(0), copy = Search(Path(TEXT("b"))).at(0);
  EXPECT_EQ(copy.dwFileAttributes, DWORD{FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | kArchive});
  EXPECT_EQ(Ticks(source.ftLastWriteTime), Ticks(*change.written));
  EXPECT_EQ(Ticks(copy.ftLastWriteTime), Ticks(*change.written));
}

// Wine keeps the archive attribute of every file set, and folders cannot be read-only.
TEST_F(SystemAttributes, ThatTheSystemDoesNotKeepAreRefusedAndAllStaysAsItWas) {
  MakeFile(TEXT("a"));
  host::FileChange change = ReadOnly(true);
  change.archive = false;
  const DWORD before = Attributes(TEXT("a"));
  const DWORD error = Change(TEXT("a"), change);
  const DWORD after = Attributes(TEXT("a"));
  if (error == 0) {
    EXPECT_EQ(after, DWORD{FILE_ATTRIBUTE_READONLY});
  } else {
    EXPECT_EQ(error, DWORD{ERROR_NOT_SUPPORTED});
    EXPECT_EQ(after, before);
  }
}

class TimesOfFiles : public InstrumentFiles {
 protected:
  TimesOfFiles() {
    host::RunClock(false);
    const SYSTEMTIME long_ago = At(2007, 5, 6, 7, 8, 9);
    EXPECT_TRUE(host::SetLocalTime(&long_ago));
  }
  ~TimesOfFiles() override {
    host::RunClock(true);
    host::FollowMachineClock();
  }
  std::int64_t Written(const WideString& name) const { return host::TicksOf(Search(Path(name)).at(0).ftLastWriteTime); }
};

TEST_F(TimesOfFiles, AreThoseOfTheInstrumentsClock) {
  const HANDLE file = Create(TEXT("a"));
  MakeFolder(TEXT("sub"));
  EXPECT_EQ(Written(TEXT("a")), host::ClockTicks());
  EXPECT_EQ(Written(TEXT("sub")), host::ClockTicks());
  const SYSTEMTIME later = At(2008, 5, 6, 7, 8, 9);
  ASSERT_TRUE(host::SetLocalTime(&later));
  EXPECT_TRUE(WriteBytes(file, "x"));
  EXPECT_EQ(Written(TEXT("a")), host::ClockTicks());
  CloseHandle(file);
  EXPECT_EQ(Written(TEXT("a")), host::ClockTicks());
}

TEST_F(TimesOfFiles, OnlyReadFromStay) {
  const HANDLE made = CreateFileW(Path(TEXT("a")).c_str(), GENERIC_READ, 0, nullptr, CREATE_NEW, 0, nullptr);
  EXPECT_EQ(Written(TEXT("a")), host::ClockTicks());
  const std::int64_t before = host::ClockTicks();
  const SYSTEMTIME later = At(2008, 5, 6, 7, 8, 9);
  ASSERT_TRUE(host::SetLocalTime(&later));
  EXPECT_EQ(ReadBytes(made, 10), "");
  CloseHandle(made);
  EXPECT_EQ(Written(TEXT("a")), before);
}

}  // namespace
}  // namespace platform_test
