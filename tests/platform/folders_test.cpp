// Making and removing folders.
#include "scratch_folder.h"

namespace platform_test {
namespace {

using CreateDirectoryTest = FileCalls;
using RemoveDirectoryTest = FileCalls;

DWORD Make(const WideString& path) { return Error(CreateDirectoryW(path.c_str(), nullptr) != FALSE); }

TEST_F(CreateDirectoryTest, MakesAFolderThatIsEmpty) {
  EXPECT_EQ(Make(Path(TEXT("sub"))), 0u);
  EXPECT_EQ(Attributes(TEXT("sub")), DWORD{FILE_ATTRIBUTE_DIRECTORY});
  EXPECT_TRUE(SearchNames(Path(TEXT("sub\\*"))).empty());
}

TEST_F(CreateDirectoryTest, TakesASeparatorAtTheEnd) {
  EXPECT_EQ(Make(Path(TEXT("sub\\"))), 0u);
  EXPECT_TRUE(Exists(TEXT("sub")));
}

TEST_F(CreateDirectoryTest, FailsForANameThatIsTaken) {
  MakeFile(TEXT("file"));
  MakeFolder(TEXT("sub"));
  EXPECT_EQ(Make(Path(TEXT("SUB"))), DWORD{ERROR_ALREADY_EXISTS});
  EXPECT_EQ(Make(Path(TEXT("file"))), DWORD{ERROR_ALREADY_EXISTS});
}

TEST_F(CreateDirectoryTest, MakesNoFoldersOnTheWay) {
  EXPECT_EQ(Make(Path(TEXT("none\\sub"))), DWORD{ERROR_PATH_NOT_FOUND});
  EXPECT_FALSE(Exists(TEXT("none")));
}

TEST_F(CreateDirectoryTest, RefusesBadPaths) {
  EXPECT_EQ(Make(TEXT("")), DWORD{ERROR_PATH_NOT_FOUND});
  EXPECT_EQ(Make(Path(TEXT("a*"))), DWORD{ERROR_INVALID_NAME});
  EXPECT_EQ(Make(Path(TEXT("a|b"))), DWORD{ERROR_INVALID_NAME});
}

TEST_F(RemoveDirectoryTest, RemovesAnEmptyFolder) {
  MakeFolder(TEXT("sub"));
  EXPECT_TRUE(Remove(TEXT("Sub\\")));
  EXPECT_FALSE(Exists(TEXT("sub")));
}

TEST_F(RemoveDirectoryTest, LeavesAFolderThatIsNotEmpty) {
  MakeFolder(TEXT("sub"));
  MakeFile(TEXT("sub\\a"));
  EXPECT_EQ(Error(Remove(TEXT("sub"))), DWORD{ERROR_DIR_NOT_EMPTY});
  EXPECT_TRUE(Exists(TEXT("sub\\a")));
}

TEST_F(RemoveDirectoryTest, LeavesAFileAlone) {
  MakeFile(TEXT("file"));
  EXPECT_EQ(Error(Remove(TEXT("file"))), DWORD{ERROR_DIRECTORY});
  EXPECT_TRUE(Exists(TEXT("file")));
}

TEST_F(RemoveDirectoryTest, TellsAMissingFolderFromAMissingWay) {
  EXPECT_EQ(Error(Remove(TEXT("none"))), DWORD{ERROR_FILE_NOT_FOUND});
  EXPECT_EQ(Error(Remove(TEXT("none\\sub"))), DWORD{ERROR_PATH_NOT_FOUND});
}

}  // namespace
}  // namespace platform_test
