// The disk: full, and not there.
#include <system_error>

#include "common/files/file_root.h"
#include "instrument_files.h"

namespace platform_test {
namespace {

using DiskSpace = InstrumentFiles;
using FileRoot = InstrumentFiles;

TEST_F(DiskSpace, AFullDiskTakesNoMoreAndKeepsWhatItHas) {
  MakeFile(TEXT("a"), "0123456789");
  host::SetFreeFileSpace(5);
  const HANDLE file = Open(TEXT("a"));
  SetFilePointer(file, 8, nullptr, FILE_BEGIN);
  DWORD written = 77;
  EXPECT_EQ(Error(WriteFile(file, "abcdefgh", 8, &written, nullptr) != FALSE), DWORD{ERROR_DISK_FULL});
  EXPECT_EQ(written, 0u);
  EXPECT_EQ(SetFilePointer(file, 0, nullptr, FILE_CURRENT), 8u);
  EXPECT_TRUE(WriteBytes(file, "abcdefg"));
  EXPECT_EQ(Error(WriteBytes(file, "h")), DWORD{ERROR_DISK_FULL});
  CloseHandle(file);
  EXPECT_EQ(Content(TEXT("a")), "01234567abcdefg");
}

TEST_F(DiskSpace, DeletingGivesRoomAgain) {
  MakeFile(TEXT("old"), "0123456789");
  host::SetFreeFileSpace(0);
  const HANDLE file = Create(TEXT("new"));
  EXPECT_FALSE(WriteBytes(file, "x"));
  EXPECT_TRUE(Delete(TEXT("old")));
  EXPECT_TRUE(WriteBytes(file, "0123456789"));
  EXPECT_FALSE(WriteBytes(file, "x"));
  CloseHandle(file);
}

TEST_F(DiskSpace, ACopyThatDoesNotFitIsRemoved) {
  MakeFile(TEXT("a"), std::string(200000, 'x'));
  host::SetFreeFileSpace(100000);
  EXPECT_EQ(Error(Copy(TEXT("a"), TEXT("b"))), DWORD{ERROR_DISK_FULL});
  EXPECT_EQ(All(), Names{TEXT("a")});
  const HANDLE file = Create(TEXT("c"));
  EXPECT_TRUE(WriteBytes(file, std::string(100000, 'x')));  // all the room is there again
  CloseHandle(file);
}

TEST_F(FileRoot, WithoutOneNoPathIsFound) {
  host::ClearFileRoot();
  WIN32_FIND_DATAW found;
  EXPECT_EQ(Error(Attributes(TEXT("a"))), DWORD{ERROR_PATH_NOT_FOUND});
  EXPECT_EQ(Error(GetFileAttributesW(TEXT("\\"))), DWORD{ERROR_PATH_NOT_FOUND});
  EXPECT_EQ(Error(Create(TEXT("a"))), DWORD{ERROR_PATH_NOT_FOUND});
  EXPECT_EQ(Error(Open(TEXT("a"))), DWORD{ERROR_PATH_NOT_FOUND});
  EXPECT_EQ(Error(CreateDirectoryW(TEXT("\\a"), nullptr) != FALSE), DWORD{ERROR_PATH_NOT_FOUND});
  EXPECT_EQ(Error(Remove(TEXT("a"))), DWORD{ERROR_PATH_NOT_FOUND});
  EXPECT_EQ(Error(Delete(TEXT("a"))), DWORD{ERROR_PATH_NOT_FOUND});
  EXPECT_EQ(Error(Copy(TEXT("a"), TEXT("b"))), DWORD{ERROR_PATH_NOT_FOUND});
  EXPECT_EQ(Error(Move(TEXT("a"), TEXT("b"))), DWORD{ERROR_PATH_NOT_FOUND});
  EXPECT_EQ(Error(FindFirstFileW(TEXT("\\*"), &found)), DWORD{ERROR_PATH_NOT_FOUND});
}

TEST_F(FileRoot, MustBeAFolder) {
  MakeHostFile("a");
  EXPECT_THROW(host::SetFileRoot(HostPath("a").u8string()), std::system_error);
  EXPECT_THROW(host::SetFileRoot(HostPath("none").u8string()), std::system_error);
}

}  // namespace
}  // namespace platform_test
