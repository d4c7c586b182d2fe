// Attributes and times: where this host keeps them, and that they stay.
#include <sys/stat.h>

#include <cstdint>

#include "common/files/file_root.h"
#include "instrument_files.h"
#include "posix/disk/attributes.h"

namespace platform_test {
namespace {

using KeptAttributes = InstrumentFiles;

TEST_F(KeptAttributes, AFileThatItsOwnerCannotWriteIsReadOnly) {
  MakeHostFile("a", "kept");
  ASSERT_EQ(chmod(HostPath("a").c_str(), 0444), 0);
  EXPECT_EQ(Attributes(TEXT("a")), DWORD{FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_ARCHIVE});
  EXPECT_EQ(Error(Open(TEXT("a"))), DWORD{ERROR_ACCESS_DENIED});
  EXPECT_EQ(Error(Open(TEXT("a"), GENERIC_WRITE)), DWORD{ERROR_ACCESS_DENIED});
  EXPECT_EQ(Error(Delete(TEXT("a"))), DWORD{ERROR_ACCESS_DENIED});
  MakeFile(TEXT("b"));
  EXPECT_EQ(Error(Copy(TEXT("b"), TEXT("a"), FALSE)), DWORD{ERROR_ACCESS_DENIED});
  EXPECT_EQ(Content(TEXT("a")), "kept");
  EXPECT_TRUE(Move(TEXT("a"), TEXT("c")));
}

TEST_F(KeptAttributes, StayWithTheFile) {
  MakeFile(TEXT("a"));
  host::FileChange change = ReadOnly(true);
  change.hidden = change.system = true;
  change.archive = false;
  ASSERT_EQ(Change(TEXT("a"), change), 0u);
  constexpr DWORD kAll = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
  EXPECT_EQ(Attributes(TEXT("a")), kAll);
  host::ClearFileRoot();
  host::SetFileRoot(fs::path(folder_.host_path()).parent_path());
  EXPECT_TRUE(Move(TEXT("a"), TEXT("b")));
  EXPECT_EQ(Attributes(TEXT("b")), kAll);
  EXPECT_EQ(Search(Path(TEXT("b"))).at(0).dwFileAttributes, kAll);
}

TEST_F(KeptAttributes, AreChangedOneByOne) {
  MakeFile(TEXT("a"));
  host::FileChange change;
  change.archive = false;
  EXPECT_EQ(Change(TEXT("a"), change), 0u);
  EXPECT_EQ(Attributes(TEXT("a")), DWORD{FILE_ATTRIBUTE_NORMAL});
  EXPECT_EQ(Change(TEXT("a"), ReadOnly(true)), 0u);
  EXPECT_EQ(Attributes(TEXT("a")), DWORD{FILE_ATTRIBUTE_READONLY});
  EXPECT_EQ(Change(TEXT("a"), ReadOnly(false)), 0u);
  EXPECT_EQ(Attributes(TEXT("a")), DWORD{FILE_ATTRIBUTE_NORMAL});
  EXPECT_EQ(Change(TEXT("none"), change), DWORD{ERROR_FILE_NOT_FOUND});
}

TEST_F(KeptAttributes, WritingSetsArchive) {
  MakeFile(TEXT("a"));
  host::FileChange change;
  change.archive = false;
  change.hidden = true;
  const HANDLE file = Open(TEXT("a"));
  EXPECT_EQ(Change(TEXT("a"), change), 0u);
  EXPECT_EQ(Attributes(TEXT("a")), DWORD{FILE_ATTRIBUTE_HIDDEN});
  EXPECT_TRUE(WriteBytes(file, "x"));
  EXPECT_EQ(Attributes(TEXT("a")), DWORD{FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_ARCHIVE});
  CloseHandle(file);
}

TEST_F(KeptAttributes, OfAFolderAreItsOwn) {
  MakeFolder(TEXT("sub"));
  host::FileChange change = ReadOnly(true);
  change.archive = true;
  EXPECT_EQ(Change(TEXT("sub"), change), 0u);
  EXPECT_EQ(Attributes(TEXT("sub")),
            DWORD{FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_READONLY});
  MakeFile(TEXT("sub\\a"));
  EXPECT_TRUE(Delete(TEXT("sub\\a")));
  EXPECT_EQ(Error(Remove(TEXT("sub"))), DWORD{ERROR_ACCESS_DENIED});
  EXPECT_EQ(Change(TEXT("sub"), ReadOnly(false)), 0u);
  EXPECT_TRUE(Remove(TEXT("sub")));
}

TEST_F(KeptAttributes, ACopyHasThemAndTheTimeOfTheLastWrite) {
  MakeFile(TEXT("a"), "text");
  host::FileChange change = ReadOnly(true);
  change.hidden = true;
  change.written = host::ToFileTime({1706693405, 123456700});
  ASSERT_EQ(Change(TEXT("a"), change), 0u);
  EXPECT_TRUE(Copy(TEXT("a"), TEXT("b")));
  const WIN32_FIND_DATAW copy = Search(Path(TEXT("b"))).at(0);
  EXPECT_EQ(copy.dwFileAttributes, DWORD{FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_ARCHIVE});
  EXPECT_EQ(copy.ftLastWriteTime.dwLowDateTime, change.written->dwLowDateTime);
  EXPECT_EQ(copy.ftLastWriteTime.dwHighDateTime, change.written->dwHighDateTime);
  EXPECT_EQ(Content(TEXT("b")), "text");
}

TEST_F(KeptAttributes, AreRefusedWhereThisMachineCannotKeepThem) {
  host::SetFileRoot("/proc/self");  // keeps no extended attributes
  host::FileChange change;
  change.archive = true;  // has it
  EXPECT_EQ(host::ChangeInstrumentFile(TEXT("comm"), change), 0u);
  change.hidden = true;
  EXPECT_EQ(host::ChangeInstrumentFile(TEXT("comm"), change), DWORD{ERROR_NOT_SUPPORTED});
  EXPECT_EQ(GetFileAttributesW(TEXT("comm")), DWORD{FILE_ATTRIBUTE_ARCHIVE});
}

TEST_F(KeptAttributes, TimesAreTheMachinesInUnitsOfTheirOwn) {
  const FILETIME time = host::ToFileTime({0, 100});
  EXPECT_EQ(std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime, 116444736000000001u);
  const timespec back = host::FromFileTime(host::ToFileTime({1706693405, 123456700}));
  EXPECT_EQ(back.tv_sec, 1706693405);
  EXPECT_EQ(back.tv_nsec, 123456700);
}

}  // namespace
}  // namespace platform_test
