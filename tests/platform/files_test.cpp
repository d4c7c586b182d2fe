// Opening, making, removing, copying and moving files.
#include "scratch_folder.h"

namespace platform_test {
namespace {

using CreateFileTest = FileCalls;
using DeleteFileTest = FileCalls;
using CopyFileTest = FileCalls;
using MoveFileTest = FileCalls;
using FileAttributes = FileCalls;

TEST_F(CreateFileTest, MakesANewFileThatIsEmpty) {
  CloseHandle(Create(TEXT("a.txt")));
  EXPECT_EQ(Content(TEXT("a.txt")), "");
}

TEST_F(CreateFileTest, ANewFileCarriesTheArchiveAttribute) {
  CloseHandle(Create(TEXT("a.txt")));
  EXPECT_EQ(Attributes(TEXT("a.txt")), DWORD{FILE_ATTRIBUTE_ARCHIVE});
}

TEST_F(CreateFileTest, DoesNotTouchAFileThatExists) {
  MakeFile(TEXT("a.txt"), "kept");
  EXPECT_EQ(Error(Create(TEXT("a.txt"))), DWORD{ERROR_FILE_EXISTS});
  EXPECT_EQ(Error(Create(TEXT("A.TXT"))), DWORD{ERROR_FILE_EXISTS});
  EXPECT_EQ(Content(TEXT("a.txt")), "kept");
}

TEST_F(CreateFileTest, AFolderOfThatNameIsAnExistingFileToo) {
  MakeFolder(TEXT("sub"));
  EXPECT_EQ(Error(Create(TEXT("sub"))), DWORD{ERROR_FILE_EXISTS});
}

TEST_F(CreateFileTest, OpensAnExistingFileInAnyLetterCase) {
  MakeFile(TEXT("Messung \u00C4.txt"), "found");
  EXPECT_EQ(Content(TEXT("messung \u00E4.TXT")), "found");
}

TEST_F(CreateFileTest, TakesBothSeparators) {
  MakeFolder(TEXT("sub"));
  MakeFile(TEXT("sub/a.txt"), "found");
  EXPECT_EQ(Content(TEXT("sub\\a.txt")), "found");
  EXPECT_EQ(Content(TEXT("sub\\\\/a.txt")), "found");
}

TEST_F(CreateFileTest, DropsDotsAndBlanksAtTheEndOfAName) {
  MakeFile(TEXT("a.txt. ."), "found");
  EXPECT_EQ(SearchNames(Path(TEXT("*"))), std::vector<WideString>{TEXT("a.txt")});
  EXPECT_EQ(Content(TEXT("a.txt  ")), "found");
}

TEST_F(CreateFileTest, AFileThatIsMissingIsNotFound) {
  EXPECT_EQ(Error(Open(TEXT("none.txt"))), DWORD{ERROR_FILE_NOT_FOUND});
}

TEST_F(CreateFileTest, AFolderThatIsMissingOnTheWayIsAnotherError) {
  MakeFile(TEXT("file"));
  EXPECT_EQ(Error(Open(TEXT("none\\a.txt"))), DWORD{ERROR_PATH_NOT_FOUND});
  EXPECT_EQ(Error(Create(TEXT("none\\a.txt"))), DWORD{ERROR_PATH_NOT_FOUND});
  EXPECT_EQ(Error(Open(TEXT("file\\a.txt"))), DWORD{ERROR_PATH_NOT_FOUND});
}

TEST_F(CreateFileTest, AFolderIsNotOpened) {
  MakeFolder(TEXT("sub"));
  EXPECT_EQ(Error(Open(TEXT("sub"))), DWORD{ERROR_ACCESS_DENIED});
}

TEST_F(CreateFileTest, RefusesCharactersThatNoNameHolds) {
  for (const WCHAR* name : {TEXT("a<b"), TEXT("a>b"), TEXT("a\"b"), TEXT("a|b"), TEXT("a?b"), TEXT("a*b"),
                            TEXT("a\u0001b"), TEXT("a\u001Fb")}) {
    EXPECT_EQ(Error(Create(name)), DWORD{ERROR_INVALID_NAME}) << testing::PrintToString(name);
    EXPECT_EQ(Error(Open(name)), DWORD{ERROR_INVALID_NAME}) << testing::PrintToString(name);
  }
}

TEST_F(CreateFileTest, AnEmptyPathIsNotFound) {
  const HANDLE file = CreateFileW(TEXT(""), kBothWays, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  EXPECT_EQ(Error(file), DWORD{ERROR_PATH_NOT_FOUND});
}

TEST_F(CreateFileTest, RefusesADispositionThatDoesNotExist) {
  for (const DWORD disposition : {0u, 6u}) {
    const HANDLE file =
        CreateFileW(Path(TEXT("a")).c_str(), kBothWays, 0, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
    EXPECT_EQ(Error(file), DWORD{ERROR_INVALID_PARAMETER});
  }
}

TEST_F(FileAttributes, TellFilesFromFolders) {
  MakeFolder(TEXT("sub"));
  MakeFile(TEXT("a.txt"));
  EXPECT_EQ(Attributes(TEXT("sub")) & FILE_ATTRIBUTE_DIRECTORY, DWORD{FILE_ATTRIBUTE_DIRECTORY});
  EXPECT_EQ(Attributes(TEXT("sub\\")) & FILE_ATTRIBUTE_DIRECTORY, DWORD{FILE_ATTRIBUTE_DIRECTORY});
  EXPECT_EQ(Attributes(TEXT("a.txt")) & FILE_ATTRIBUTE_DIRECTORY, 0u);
}

TEST_F(FileAttributes, FailForWhatIsMissing) {
  EXPECT_EQ(Error(Attributes(TEXT("none"))), DWORD{ERROR_FILE_NOT_FOUND});
  EXPECT_EQ(Error(Attributes(TEXT("none\\a"))), DWORD{ERROR_PATH_NOT_FOUND});
  EXPECT_EQ(Error(GetFileAttributesW(TEXT(""))), DWORD{ERROR_PATH_NOT_FOUND});
}

TEST_F(FileAttributes, FailForAWildCard) {
  EXPECT_EQ(Error(Attributes(TEXT("*.*"))), DWORD{ERROR_INVALID_NAME});
  EXPECT_EQ(Error(Attributes(TEXT("a?"))), DWORD{ERROR_INVALID_NAME});
}

TEST_F(DeleteFileTest, RemovesTheFile) {
  MakeFile(TEXT("a.txt"));
  EXPECT_TRUE(Delete(TEXT("A.txt")));
  EXPECT_FALSE(Exists(TEXT("a.txt")));
}

TEST_F(DeleteFileTest, TellsAMissingFileFromAMissingFolder) {
  EXPECT_EQ(Error(Delete(TEXT("none"))), DWORD{ERROR_FILE_NOT_FOUND});
  EXPECT_EQ(Error(Delete(TEXT("none\\a"))), DWORD{ERROR_PATH_NOT_FOUND});
}

TEST_F(DeleteFileTest, LeavesAFolderAlone) {
  MakeFolder(TEXT("sub"));
  EXPECT_EQ(Error(Delete(TEXT("sub"))), DWORD{ERROR_ACCESS_DENIED});
  EXPECT_TRUE(Exists(TEXT("sub")));
}

TEST_F(DeleteFileTest, TakesNoWildCards) {
  MakeFile(TEXT("a.txt"));
  EXPECT_EQ(Error(Delete(TEXT("*"))), DWORD{ERROR_INVALID_NAME});
  EXPECT_TRUE(Exists(TEXT("a.txt")));
}

TEST_F(CopyFileTest, CopiesTheData) {
  std::string data(200000, '\0');
  for (std::size_t i = 0; i < data.size(); ++i) data[i] = static_cast<char>(i * 31 % 251);
  MakeFile(TEXT("a"), data);
  EXPECT_TRUE(Copy(TEXT("a"), TEXT("b")));
  EXPECT_EQ(Content(TEXT("b")), data);
  EXPECT_EQ(Content(TEXT("a")), data);
}

TEST_F(CopyFileTest, DoesNotOverwriteUnlessAsked) {
  MakeFile(TEXT("a"), "new");
  MakeFile(TEXT("b"), "old and longer");
  EXPECT_EQ(Error(Copy(TEXT("a"), TEXT("b"))), DWORD{ERROR_FILE_EXISTS});
  EXPECT_EQ(Content(TEXT("b")), "old and longer");
  EXPECT_TRUE(Copy(TEXT("a"), TEXT("b"), FALSE));
  EXPECT_EQ(Content(TEXT("b")), "new");
}

TEST_F(CopyFileTest, FailsWhereSourceOrFolderIsMissing) {
  MakeFile(TEXT("a"));
  EXPECT_EQ(Error(Copy(TEXT("none"), TEXT("b"))), DWORD{ERROR_FILE_NOT_FOUND});
  EXPECT_EQ(Error(Copy(TEXT("none\\a"), TEXT("b"))), DWORD{ERROR_PATH_NOT_FOUND});
  EXPECT_EQ(Error(Copy(TEXT("a"), TEXT("none\\b"))), DWORD{ERROR_PATH_NOT_FOUND});
}

TEST_F(CopyFileTest, DoesNotCopyAFolder) {
  MakeFolder(TEXT("sub"));
  EXPECT_EQ(Error(Copy(TEXT("sub"), TEXT("b"))), DWORD{ERROR_ACCESS_DENIED});
  EXPECT_FALSE(Exists(TEXT("b")));
}

TEST_F(MoveFileTest, RenamesAFile) {
  MakeFile(TEXT("a"), "moved");
  EXPECT_TRUE(Move(TEXT("a"), TEXT("b")));
  EXPECT_FALSE(Exists(TEXT("a")));
  EXPECT_EQ(Content(TEXT("b")), "moved");
}

TEST_F(MoveFileTest, MovesToAnotherFolder) {
  MakeFolder(TEXT("sub"));
  MakeFile(TEXT("a"), "moved");
  EXPECT_TRUE(Move(TEXT("a"), TEXT("sub\\b")));
  EXPECT_EQ(Content(TEXT("sub\\b")), "moved");
}

TEST_F(MoveFileTest, MovesAFolderWithAllThatIsInIt) {
  MakeFolder(TEXT("sub"));
  MakeFile(TEXT("sub\\a"), "moved");
  EXPECT_TRUE(Move(TEXT("sub"), TEXT("other")));
  EXPECT_EQ(Content(TEXT("other\\a")), "moved");
}

TEST_F(MoveFileTest, ChangesTheLetterCaseAlone) {
  MakeFile(TEXT("name.txt"));
  MakeFolder(TEXT("sub"));
  EXPECT_TRUE(Move(TEXT("name.txt"), TEXT("Name.TXT")));
  EXPECT_TRUE(Move(TEXT("SUB"), TEXT("Sub")));
  EXPECT_EQ(SearchNames(Path(TEXT("*"))), (std::vector<WideString>{TEXT("Name.TXT"), TEXT("Sub")}));
}

TEST_F(MoveFileTest, ToItsOwnNameIsNoChange) {
  MakeFile(TEXT("a"), "kept");
  EXPECT_TRUE(Move(TEXT("a"), TEXT("a")));
  EXPECT_EQ(Content(TEXT("a")), "kept");
}

TEST_F(MoveFileTest, DoesNotOverwrite) {
  MakeFile(TEXT("a"), "a");
  MakeFile(TEXT("b"), "b");
  MakeFolder(TEXT("sub"));
  EXPECT_EQ(Error(Move(TEXT("a"), TEXT("b"))), DWORD{ERROR_ALREADY_EXISTS});
  EXPECT_EQ(Error(Move(TEXT("a"), TEXT("sub"))), DWORD{ERROR_ALREADY_EXISTS});
  EXPECT_EQ(Content(TEXT("b")), "b");
}

TEST_F(MoveFileTest, FailsWhereSourceOrFolderIsMissing) {
  MakeFile(TEXT("a"));
  EXPECT_EQ(Error(Move(TEXT("none"), TEXT("b"))), DWORD{ERROR_FILE_NOT_FOUND});
  EXPECT_EQ(Error(Move(TEXT("none\\a"), TEXT("b"))), DWORD{ERROR_PATH_NOT_FOUND});
  EXPECT_EQ(Error(Move(TEXT("a"), TEXT("none\\b"))), DWORD{ERROR_PATH_NOT_FOUND});
}

TEST_F(MoveFileTest, DoesNotPutAFolderIntoItself) {
  MakeFolder(TEXT("sub"));
  EXPECT_EQ(Error(Move(TEXT("sub"), TEXT("sub\\inner"))), DWORD{ERROR_SHARING_VIOLATION});
  EXPECT_TRUE(Exists(TEXT("sub")));
}

}  // namespace
}  // namespace platform_test
