// Searching a folder.
#include "scratch_folder.h"

namespace platform_test {
namespace {

using Names = std::vector<WideString>;

class FindFiles : public FileCalls {
 protected:
  void MakeFiles(const Names& names) const {
    for (const WideString& name : names) MakeFile(name, "");
  }
  Names Found(const WideString& pattern) const { return SearchNames(Path(pattern)); }
};

TEST_F(FindFiles, TellsEveryFileAndFolder) {
  MakeFiles({TEXT("b.txt"), TEXT("a")});
  MakeFolder(TEXT("c"));
  EXPECT_EQ(Found(TEXT("*")), (Names{TEXT("a"), TEXT("b.txt"), TEXT("c")}));
  EXPECT_EQ(Found(TEXT("*.*")), (Names{TEXT("a"), TEXT("b.txt"), TEXT("c")}));
}

TEST_F(FindFiles, TellsAttributesSizeAndTime) {
  MakeFile(TEXT("a.txt"), "12345");
  MakeFolder(TEXT("sub"));
  const auto found = Search(Path(TEXT("*")));
  ASSERT_EQ(found.size(), 2u);
  EXPECT_EQ(found[0].dwFileAttributes, DWORD{FILE_ATTRIBUTE_ARCHIVE});
  EXPECT_EQ(found[0].nFileSizeLow, 5u);
  EXPECT_EQ(found[0].nFileSizeHigh, 0u);
  EXPECT_NE(found[0].ftLastWriteTime.dwHighDateTime, 0u);
  EXPECT_EQ(found[1].dwFileAttributes, DWORD{FILE_ATTRIBUTE_DIRECTORY});
}

TEST_F(FindFiles, FindsOneNameWithoutWildCards) {
  MakeFiles({TEXT("Name.txt"), TEXT("Name.txt2")});
  EXPECT_EQ(Found(TEXT("name.TXT")), Names{TEXT("Name.txt")});
}

TEST_F(FindFiles, TellsNamesInTheirOrder) {
  MakeFiles({TEXT("b"), TEXT("C"), TEXT("a"), TEXT("_"), TEXT("D")});
  EXPECT_EQ(Found(TEXT("*")), (Names{TEXT("a"), TEXT("b"), TEXT("C"), TEXT("D"), TEXT("_")}));
}

TEST_F(FindFiles, AStarIsAnyText) {
  MakeFiles({TEXT("abc.txt"), TEXT("abd.txt"), TEXT("abc.dat"), TEXT("xabc.txt")});
  EXPECT_EQ(Found(TEXT("AB*.txt")), (Names{TEXT("abc.txt"), TEXT("abd.txt")}));
  EXPECT_EQ(Found(TEXT("*c*")), (Names{TEXT("abc.dat"), TEXT("abc.txt"), TEXT("xabc.txt")}));
  EXPECT_EQ(Found(TEXT("*.dat")), Names{TEXT("abc.dat")});
}

TEST_F(FindFiles, AQuestionMarkIsOneCharacterAndAtTheEndOfANameNoneToo) {
  MakeFiles({TEXT("a"), TEXT("ab"), TEXT("abc"), TEXT("a.x"), TEXT("ab.x")});
  EXPECT_EQ(Found(TEXT("a?")), (Names{TEXT("a"), TEXT("ab")}));
  EXPECT_EQ(Found(TEXT("a??")), (Names{TEXT("a"), TEXT("ab"), TEXT("abc")}));
  EXPECT_EQ(Found(TEXT("a?.x")), (Names{TEXT("a.x"), TEXT("ab.x")}));
  EXPECT_EQ(Found(TEXT("?b")), Names{TEXT("ab")});
}

TEST_F(FindFiles, AStarAndADotAreNamesWithoutAnEnding) {
  MakeFiles({TEXT("a"), TEXT("b.x"), TEXT("c")});
  EXPECT_EQ(Found(TEXT("*.")), (Names{TEXT("a"), TEXT("c")}));
}

TEST_F(FindFiles, AStarReachesOverSeveralDots) {
  MakeFiles({TEXT("a.b.txt"), TEXT("a.txt.b"), TEXT("a.txt")});
  EXPECT_EQ(Found(TEXT("*.txt")), (Names{TEXT("a.b.txt"), TEXT("a.txt")}));
  EXPECT_EQ(Found(TEXT("a*.*")), (Names{TEXT("a.b.txt"), TEXT("a.txt"), TEXT("a.txt.b")}));
}

TEST_F(FindFiles, NothingFoundIsAnError) {
  WIN32_FIND_DATAW found;
  MakeFile(TEXT("a"));
  EXPECT_EQ(Error(FindFirstFileW(Path(TEXT("b*")).c_str(), &found)), DWORD{ERROR_FILE_NOT_FOUND});
  EXPECT_EQ(Error(FindFirstFileW(Path(TEXT("b")).c_str(), &found)), DWORD{ERROR_FILE_NOT_FOUND});
}

TEST_F(FindFiles, AMissingFolderIsAnotherError) {
  WIN32_FIND_DATAW found;
  EXPECT_EQ(Error(FindFirstFileW(Path(TEXT("none\\*")).c_str(), &found)), DWORD{ERROR_PATH_NOT_FOUND});
  EXPECT_EQ(Error(FindFirstFileW(TEXT(""), &found)), DWORD{ERROR_PATH_NOT_FOUND});
}

TEST_F(FindFiles, AWildCardStandsInTheLastNameOnly) {
  WIN32_FIND_DATAW found;
  MakeFolder(TEXT("sub"));
  MakeFile(TEXT("sub\\a"));
  EXPECT_EQ(Error(FindFirstFileW(Path(TEXT("s*\\a")).c_str(), &found)), DWORD{ERROR_INVALID_NAME});
}

TEST_F(FindFiles, ASeparatorAtTheEndFindsNothing) {
  WIN32_FIND_DATAW found;
  MakeFolder(TEXT("sub"));
  EXPECT_EQ(Error(FindFirstFileW(Path(TEXT("sub\\")).c_str(), &found)), DWORD{ERROR_FILE_NOT_FOUND});
}

TEST_F(FindFiles, SeveralSearchesRunAtOnce) {
  MakeFiles({TEXT("a1"), TEXT("a2"), TEXT("b1"), TEXT("b2")});
  WIN32_FIND_DATAW a, b;
  const HANDLE first = FindFirstFileW(Path(TEXT("a*")).c_str(), &a);
  const HANDLE second = FindFirstFileW(Path(TEXT("b*")).c_str(), &b);
  EXPECT_TRUE(FindNextFileW(first, &a));
  EXPECT_TRUE(FindNextFileW(second, &b));
  EXPECT_EQ(WideString(a.cFileName), TEXT("a2"));
  EXPECT_EQ(WideString(b.cFileName), TEXT("b2"));
  EXPECT_TRUE(FindClose(first));
  EXPECT_TRUE(FindClose(second));
}

TEST_F(FindFiles, FilesMayBeDeletedWhileTheSearchRuns) {
  MakeFiles({TEXT("a"), TEXT("b"), TEXT("c")});
  WIN32_FIND_DATAW found;
  const HANDLE search = FindFirstFileW(Path(TEXT("?")).c_str(), &found);
  EXPECT_TRUE(Delete(found.cFileName));
  while (FindNextFileW(search, &found)) Delete(found.cFileName);
  EXPECT_TRUE(FindClose(search));
  EXPECT_TRUE(Found(TEXT("*")).empty());
}

TEST_F(FindFiles, OtherHandlesAreNoSearches) {
  WIN32_FIND_DATAW found;
  const HANDLE file = Create(TEXT("a"));
  EXPECT_EQ(Error(FindNextFileW(file, &found) != FALSE), DWORD{ERROR_INVALID_HANDLE});
  EXPECT_EQ(Error(FindClose(INVALID_HANDLE_VALUE) != FALSE), DWORD{ERROR_INVALID_HANDLE});
  CloseHandle(file);
}

}  // namespace
}  // namespace platform_test
