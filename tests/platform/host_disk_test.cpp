// The disk: full, write-protected, not there, and the errors of this machine.
#include <sys/resource.h>
#include <sys/stat.h>

#include <cerrno>
#include <csignal>
#include <system_error>
#include <utility>

#include "common/files/file_root.h"
#include "host_files.h"
#include "posix/disk/host_errors.h"

namespace platform_test {
namespace {

// One of this process's limits, lowered for a while.
class LoweredLimit {
 public:
  LoweredLimit(__rlimit_resource which, rlim_t limit) : which_(which) {
    EXPECT_EQ(getrlimit(which_, &before_), 0);
    const rlimit lower = {limit, before_.rlim_max};
    EXPECT_EQ(setrlimit(which_, &lower), 0);
  }
  LoweredLimit(const LoweredLimit&) = delete;
  LoweredLimit& operator=(const LoweredLimit&) = delete;
  ~LoweredLimit() { setrlimit(which_, &before_); }

 private:
  const __rlimit_resource which_;
  rlimit before_{};
};

using DiskSpace = HostFiles;
using FileRoot = HostFiles;

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

TEST_F(DiskSpace, WhatThisMachineTakesOnlyInPartIsTakenBack) {
  MakeFile(TEXT("a"), "0123456789");
  const HANDLE file = Open(TEXT("a"));
  SetFilePointer(file, 0, nullptr, FILE_END);
  const auto before = std::signal(SIGXFSZ, SIG_IGN);
  {
    const LoweredLimit limit(RLIMIT_FSIZE, 100000);
    EXPECT_EQ(Error(WriteBytes(file, std::string(200000, 'x'))), DWORD{ERROR_DISK_FULL});
  }
  std::signal(SIGXFSZ, before);
  EXPECT_EQ(SetFilePointer(file, 0, nullptr, FILE_END), 10u);
  EXPECT_TRUE(WriteBytes(file, "abc"));
  CloseHandle(file);
  EXPECT_EQ(Content(TEXT("a")), "0123456789abc");
}

TEST_F(DiskSpace, TooManyOpenFilesOfThisMachineAreAnError) {
  MakeFile(TEXT("a"));
  const LoweredLimit limit(RLIMIT_NOFILE, 0);
  EXPECT_EQ(Error(Attributes(TEXT("a"))), DWORD{ERROR_TOO_MANY_OPEN_FILES});
  EXPECT_EQ(Error(Open(TEXT("a"))), DWORD{ERROR_TOO_MANY_OPEN_FILES});
  EXPECT_EQ(Error(Create(TEXT("b"))), DWORD{ERROR_TOO_MANY_OPEN_FILES});
}

TEST_F(DiskSpace, ErrorsOfThisMachineBecomeThePlatforms) {
  const std::pair<int, DWORD> pairs[] = {
      {ENOSPC, ERROR_DISK_FULL},     {EDQUOT, ERROR_DISK_FULL},           {EROFS, ERROR_WRITE_PROTECT},
      {EIO, ERROR_IO_DEVICE},        {EMFILE, ERROR_TOO_MANY_OPEN_FILES}, {ENFILE, ERROR_TOO_MANY_OPEN_FILES},
      {EACCES, ERROR_ACCESS_DENIED}, {ENOTSUP, ERROR_NOT_SUPPORTED},      {EXDEV, ERROR_NOT_SAME_DEVICE},
      {ELOOP, ERROR_FILE_NOT_FOUND}, {ENOTDIR, ERROR_PATH_NOT_FOUND},     {EPROTO, ERROR_GEN_FAILURE}};
  for (const auto& [host_error, error] : pairs) EXPECT_EQ(host::ErrorFrom(host_error), error) << host_error;
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
  EXPECT_THROW(host::SetFileRoot(HostPath("a")), std::system_error);
  EXPECT_THROW(host::SetFileRoot(HostPath("none")), std::system_error);
}

TEST_F(FileRoot, ThatItsOwnerCannotWriteIsAProtectedDisk) {
  MakeFile(TEXT("a"), "kept");
  const HANDLE before = Open(TEXT("a"), GENERIC_READ, FILE_SHARE_READ);
  const std::string root = fs::path(folder_.host_path()).parent_path();
  ASSERT_EQ(chmod(root.c_str(), 0500), 0);
  EXPECT_EQ(Error(Create(TEXT("b"))), DWORD{ERROR_WRITE_PROTECT});
  EXPECT_EQ(Error(CreateDirectoryW(Path(TEXT("b")).c_str(), nullptr) != FALSE), DWORD{ERROR_WRITE_PROTECT});
  EXPECT_EQ(Error(Open(TEXT("a"), GENERIC_WRITE)), DWORD{ERROR_WRITE_PROTECT});
  EXPECT_EQ(Error(Copy(TEXT("a"), TEXT("b"))), DWORD{ERROR_WRITE_PROTECT});
  CloseHandle(before);
  EXPECT_EQ(Error(Delete(TEXT("a"))), DWORD{ERROR_WRITE_PROTECT});
  EXPECT_EQ(Error(Move(TEXT("a"), TEXT("b"))), DWORD{ERROR_WRITE_PROTECT});
  EXPECT_EQ(Error(Remove(TEXT(""))), DWORD{ERROR_WRITE_PROTECT});
  EXPECT_EQ(Content(TEXT("a")), "kept");
  ASSERT_EQ(chmod(root.c_str(), 0700), 0);
}

TEST_F(FileRoot, AFolderThatItsOwnerCannotWriteKeepsItsNames) {
  MakeFolder(TEXT("sub"));
  MakeFile(TEXT("sub\\a"));
  ASSERT_EQ(chmod(HostPath("sub").c_str(), 0500), 0);
  EXPECT_EQ(Error(Create(TEXT("sub\\b"))), DWORD{ERROR_ACCESS_DENIED});
  EXPECT_EQ(Error(Delete(TEXT("sub\\a"))), DWORD{ERROR_ACCESS_DENIED});
  EXPECT_EQ(Error(Move(TEXT("sub\\a"), TEXT("a"))), DWORD{ERROR_ACCESS_DENIED});
}

}  // namespace
}  // namespace platform_test
