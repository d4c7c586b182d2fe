// The disk: full or write-protected by this machine, and its errors.
#include <sys/resource.h>
#include <sys/stat.h>

#include <cerrno>
#include <csignal>
#include <utility>

#include "instrument_files.h"
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

using DiskSpace = InstrumentFiles;
using FileRoot = InstrumentFiles;

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
