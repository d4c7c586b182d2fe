// Whoever clears the last error, makes a call on files and then asks for it, learns how the call has ended: one that
// succeeds leaves none, however much it had to look for.
#include "scratch_folder.h"

namespace platform_test {
namespace {

class LastErrorTest : public FileCalls {
 protected:
  /// What the call leaves; it must succeed.
  template <class Call>
  static DWORD Left(const Call& call) {
    SetLastError(0);
    EXPECT_TRUE(call());
    return GetLastError();
  }

  BOOL MakeFolderAt(const WideString& name) const { return CreateDirectoryW(Path(name).c_str(), nullptr); }
};

TEST_F(LastErrorTest, IsNoneWhenAFolderIsMadeOrRemoved) {
  EXPECT_EQ(Left([&] { return MakeFolderAt(TEXT("sub")); }), 0u);
  EXPECT_EQ(Left([&] { return Remove(TEXT("sub")); }), 0u);
}

TEST_F(LastErrorTest, IsNoneWhenAFileIsMadeOpenedOrClosed) {
  HANDLE file = INVALID_HANDLE_VALUE;
  EXPECT_EQ(Left([&] { return (file = Create(TEXT("new"))) != INVALID_HANDLE_VALUE; }), 0u);
  EXPECT_EQ(Left([&] { return CloseHandle(file); }), 0u);
  EXPECT_EQ(Left([&] { return (file = Open(TEXT("NEW"))) != INVALID_HANDLE_VALUE; }), 0u);
  EXPECT_EQ(Left([&] { return CloseHandle(file); }), 0u);
}

TEST_F(LastErrorTest, IsNoneWhenAFileIsWrittenPlacedOrRead) {
  const HANDLE file = Create(TEXT("file"));
  EXPECT_EQ(Left([&] { return WriteBytes(file, "text"); }), 0u);
  EXPECT_EQ(Left([&] { return SetFilePointer(file, 0, nullptr, FILE_BEGIN) == 0; }), 0u);
  EXPECT_EQ(Left([&] { return ReadBytes(file, 4) == "text"; }), 0u);
  CloseHandle(file);
}

TEST_F(LastErrorTest, IsNoneWhenAFileIsCopiedMovedOrDeleted) {
  MakeFile(TEXT("a"));
  EXPECT_EQ(Left([&] { return Copy(TEXT("a"), TEXT("b")); }), 0u);
  EXPECT_EQ(Left([&] { return Copy(TEXT("a"), TEXT("b"), FALSE); }), 0u);
  EXPECT_EQ(Left([&] { return Move(TEXT("b"), TEXT("c")); }), 0u);
  EXPECT_EQ(Left([&] { return Move(TEXT("c"), TEXT("C")); }), 0u);
  EXPECT_EQ(Left([&] { return Delete(TEXT("c")); }), 0u);
}

TEST_F(LastErrorTest, IsNoneWhenAttributesAreTold) {
  MakeFile(TEXT("a"));
  EXPECT_EQ(Left([&] { return Exists(TEXT("a")); }), 0u);
}

TEST_F(LastErrorTest, IsNoneWhileASearchFinds) {
  MakeFile(TEXT("a"));
  MakeFile(TEXT("b"));
  WIN32_FIND_DATAW found;
  HANDLE search = INVALID_HANDLE_VALUE;
  const WideString all = Path(TEXT("*"));
  EXPECT_EQ(Left([&] { return (search = FindFirstFileW(all.c_str(), &found)) != INVALID_HANDLE_VALUE; }), 0u);
  EXPECT_EQ(Left([&] { return FindNextFileW(search, &found); }), 0u);
  EXPECT_EQ(Left([&] { return FindClose(search); }), 0u);
}

}  // namespace
}  // namespace platform_test
