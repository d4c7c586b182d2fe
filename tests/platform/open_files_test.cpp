// Reading, writing and moving in an open file, and what others may do meanwhile.
#include "scratch_folder.h"

namespace platform_test {
namespace {

constexpr DWORD kRead = GENERIC_READ;
constexpr DWORD kWrite = GENERIC_WRITE;
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE;

class FileData : public FileCalls {
 protected:
  FileData() : file_(Create(TEXT("data"))) { WriteBytes(file_, "0123456789"); }
  ~FileData() override { CloseHandle(file_); }

  DWORD Seek(LONG distance, DWORD method = FILE_BEGIN) const {
    return SetFilePointer(file_, distance, nullptr, method);
  }

  HANDLE file_;
};

using FilePointer = FileData;
using FileSharing = FileCalls;

TEST_F(FileData, IsReadWhereThePositionIs) {
  Seek(3);
  EXPECT_EQ(ReadBytes(file_, 4), "3456");
  EXPECT_EQ(ReadBytes(file_, 4), "789");
}

TEST_F(FileData, ReadingAtTheEndSucceedsWithNothing) {
  DWORD read = 77;
  char byte = 0;
  SetLastError(0);
  EXPECT_TRUE(ReadFile(file_, &byte, 1, &read, nullptr));
  EXPECT_EQ(read, 0u);
  EXPECT_EQ(GetLastError(), 0u);
}

TEST_F(FileData, WritingReplacesAndExtends) {
  Seek(8);
  EXPECT_TRUE(WriteBytes(file_, "abcd"));
  Seek(0);
  EXPECT_EQ(ReadBytes(file_, 20), "01234567abcd");
}

TEST_F(FileData, WritingNothingSucceeds) {
  DWORD written = 77;
  EXPECT_TRUE(WriteFile(file_, "", 0, &written, nullptr));
  EXPECT_EQ(written, 0u);
  EXPECT_EQ(Seek(0, FILE_END), 10u);
}

TEST_F(FileData, WritingBehindTheEndFillsWithZeros) {
  Seek(12);
  EXPECT_TRUE(WriteBytes(file_, "x"));
  Seek(9);
  EXPECT_EQ(ReadBytes(file_, 9), std::string("9\0\0x", 4));
}

TEST_F(FileData, NeedsTheAccessItWasOpenedFor) {
  CloseHandle(file_);
  DWORD count = 0;
  char byte = 'x';
  file_ = Open(TEXT("data"), kRead);
  EXPECT_EQ(Error(WriteFile(file_, &byte, 1, &count, nullptr) != FALSE), DWORD{ERROR_ACCESS_DENIED});
  CloseHandle(file_);
  file_ = Open(TEXT("data"), kWrite);
  EXPECT_EQ(Error(ReadFile(file_, &byte, 1, &count, nullptr) != FALSE), DWORD{ERROR_ACCESS_DENIED});
}

TEST_F(FileData, IsGoneWithTheHandle) {
  const HANDLE other = Create(TEXT("other"));
  DWORD count = 0;
  char byte = 0;
  EXPECT_TRUE(CloseHandle(other));
  EXPECT_EQ(Error(ReadFile(other, &byte, 1, &count, nullptr) != FALSE), DWORD{ERROR_INVALID_HANDLE});
  EXPECT_EQ(Error(WriteFile(other, &byte, 1, &count, nullptr) != FALSE), DWORD{ERROR_INVALID_HANDLE});
  EXPECT_EQ(Error(CloseHandle(other) != FALSE), DWORD{ERROR_INVALID_HANDLE});
}

TEST_F(FilePointer, MovesFromStartPositionAndEnd) {
  EXPECT_EQ(Seek(4), 4u);
  EXPECT_EQ(Seek(3, FILE_CURRENT), 7u);
  EXPECT_EQ(Seek(-5, FILE_CURRENT), 2u);
  EXPECT_EQ(Seek(-1, FILE_END), 9u);
}

TEST_F(FilePointer, MayStandBehindTheEnd) {
  EXPECT_EQ(Seek(1000), 1000u);
  EXPECT_EQ(ReadBytes(file_, 1), "");
}

TEST_F(FilePointer, NeverStandsBeforeTheStart) {
  Seek(4);
  EXPECT_EQ(Error(Seek(-1)), DWORD{ERROR_NEGATIVE_SEEK});
  EXPECT_EQ(Error(Seek(-5, FILE_CURRENT)), DWORD{ERROR_NEGATIVE_SEEK});
  EXPECT_EQ(Error(Seek(-2147483647 - 1, FILE_END)), DWORD{ERROR_NEGATIVE_SEEK});
  EXPECT_EQ(Seek(0, FILE_CURRENT), 4u);
}

TEST_F(FilePointer, RefusesAnUnknownMethod) { EXPECT_EQ(Error(Seek(0, 3)), DWORD{ERROR_INVALID_PARAMETER}); }

TEST_F(FilePointer, TakesTheHighPartOfTheDistance) {
  LONG high = 1;
  EXPECT_EQ(SetFilePointer(file_, 5, &high, FILE_BEGIN), 5u);
  EXPECT_EQ(high, 1);
  high = -1;
  EXPECT_EQ(SetFilePointer(file_, -5, &high, FILE_CURRENT), 0u);
  EXPECT_EQ(high, 1);
}

TEST_F(FilePointer, APositionBeyond32BitsNeedsTheHighPart) {
  LONG high = 0;
  SetFilePointer(file_, -1, &high, FILE_BEGIN);  // a high part of 0: the distance is no negative number
  EXPECT_EQ(high, 0);
  EXPECT_EQ(Error(Seek(2, FILE_CURRENT)), DWORD{ERROR_INVALID_PARAMETER});
}

TEST_F(FilePointer, APositionOfAllOnesIsNoError) {
  LONG high = 0;
  SetLastError(77);
  EXPECT_EQ(SetFilePointer(file_, -1, &high, FILE_BEGIN), DWORD{INVALID_SET_FILE_POINTER});
  EXPECT_EQ(GetLastError(), DWORD{NO_ERROR});
}

TEST_F(FilePointer, NeedsAnOpenFile) {
  const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
  EXPECT_EQ(Error(SetFilePointer(event, 0, nullptr, FILE_BEGIN)), DWORD{ERROR_INVALID_HANDLE});
  EXPECT_EQ(Error(SetFilePointer(nullptr, 0, nullptr, FILE_BEGIN)), DWORD{ERROR_INVALID_HANDLE});
  CloseHandle(event);
}

TEST_F(FileSharing, AFileOpenForOneAloneIsOpenedByNobodyElse) {
  const HANDLE file = Create(TEXT("a"));
  EXPECT_EQ(Error(Open(TEXT("a"), kRead, kShareAll)), DWORD{ERROR_SHARING_VIOLATION});
  EXPECT_EQ(Error(Open(TEXT("A"), kWrite, kShareAll)), DWORD{ERROR_SHARING_VIOLATION});
  CloseHandle(file);
  const HANDLE again = Open(TEXT("a"));
  EXPECT_EQ(Error(again), 0u);
  CloseHandle(again);
}

TEST_F(FileSharing, BothSidesMustAllowWhatTheOtherDoes) {
  struct Case {
    DWORD access, share, other_access, other_share;
    bool allowed;
  };
  constexpr DWORD kShareRead = FILE_SHARE_READ;
  constexpr DWORD kShareWrite = FILE_SHARE_WRITE;
  const Case cases[] = {
      {kRead, kShareRead, kRead, kShareRead, true},         {kRead, kShareRead, kWrite, kShareRead, false},
      {kRead, kShareWrite, kWrite, kShareRead, true},       {kRead, kShareAll, kWrite, kShareWrite, false},
      {kWrite, kShareRead, kRead, kShareWrite, true},       {kWrite, kShareAll, kWrite, kShareAll, true},
      {kRead, kShareRead, kRead | kWrite, kShareAll, false}};
  MakeFile(TEXT("a"));
  for (const Case& each : cases) {
    const HANDLE first = Open(TEXT("a"), each.access, each.share);
    const HANDLE second = Open(TEXT("a"), each.other_access, each.other_share);
    EXPECT_EQ(Error(second), each.allowed ? 0u : DWORD{ERROR_SHARING_VIOLATION}) << &each - cases;
    if (each.allowed) CloseHandle(second);
    CloseHandle(first);
  }
}

TEST_F(FileSharing, AnOpenFileIsNeitherDeletedNorMovedNorCopied) {
  const HANDLE file = Create(TEXT("a"));
  EXPECT_EQ(Error(Delete(TEXT("a"))), DWORD{ERROR_SHARING_VIOLATION});
  EXPECT_EQ(Error(Move(TEXT("a"), TEXT("b"))), DWORD{ERROR_SHARING_VIOLATION});
  EXPECT_EQ(Error(Copy(TEXT("a"), TEXT("b"))), DWORD{ERROR_SHARING_VIOLATION});
  EXPECT_FALSE(Exists(TEXT("b")));
  CloseHandle(file);
  EXPECT_TRUE(Move(TEXT("a"), TEXT("b")));
}

TEST_F(FileSharing, AnOpenFileIsNotOverwritten) {
  MakeFile(TEXT("b"), "new");
  const HANDLE file = Create(TEXT("a"));
  EXPECT_EQ(Error(Copy(TEXT("b"), TEXT("a"), FALSE)), DWORD{ERROR_SHARING_VIOLATION});
  CloseHandle(file);
}

TEST_F(FileSharing, AFileOpenedForReadingByAllIsCopied) {
  MakeFile(TEXT("a"), "copied");
  const HANDLE file = Open(TEXT("a"), kRead, FILE_SHARE_READ);
  EXPECT_TRUE(Copy(TEXT("a"), TEXT("b")));
  CloseHandle(file);
  EXPECT_EQ(Content(TEXT("b")), "copied");
}

TEST_F(FileSharing, AFolderThatHoldsAnOpenFileStaysWhereItIs) {
  MakeFolder(TEXT("sub"));
  MakeFolder(TEXT("sub\\inner"));
  const HANDLE file = Create(TEXT("sub\\inner\\a"));
  EXPECT_EQ(Error(Move(TEXT("sub"), TEXT("other"))), DWORD{ERROR_ACCESS_DENIED});
  CloseHandle(file);
  EXPECT_TRUE(Move(TEXT("sub"), TEXT("other")));
}

TEST_F(FileSharing, AttributesOfAnOpenFileAreTold) {
  const HANDLE file = Create(TEXT("a"));
  EXPECT_EQ(Attributes(TEXT("a")), DWORD{FILE_ATTRIBUTE_ARCHIVE});
  EXPECT_EQ(SearchNames(Path(TEXT("a"))).size(), 1u);
  CloseHandle(file);
}

}  // namespace
}  // namespace platform_test
