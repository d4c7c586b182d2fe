// Files on this host: names in another spelling, attributes and where they are kept, the full and the protected disk.
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "posix/calls/calls.h"
#include "posix/disk/attributes.h"
#include "posix/disk/file_root.h"
#include "posix/disk/host_errors.h"
#include "posix/files/file_facts.h"
#include "scratch_folder.h"

namespace platform_test {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<WideString>;

class HostFiles : public FileCalls {
 protected:
  std::string HostPath(const std::string& name) const { return folder_.host_path() + "/" + name; }
  void MakeHostFile(const std::string& name, const std::string& text = "") const {
    std::ofstream file(HostPath(name), std::ios::binary);
    file << text;
    ASSERT_TRUE(file.good());
  }
  Names All() const { return SearchNames(Path(TEXT("*"))); }
  DWORD Change(const WideString& name, const host::FileChange& change) const {
    return host::ChangeInstrumentFile(Path(name), change);
  }
  static host::FileChange ReadOnly(bool on) {
    host::FileChange change;
    change.readonly = on;
    return change;
  }
};

using FileNames = HostFiles;
using KeptAttributes = HostFiles;
using DiskSpace = HostFiles;
using FileRoot = HostFiles;
using FileLog = HostFiles;

TEST_F(FileNames, AreUtf8OnThisMachineAsTheyWereWritten) {
  MakeFile(TEXT("M\u00FCnchen \u6E2C\u91CF \U0001F4CF.Txt"));
  EXPECT_TRUE(fs::exists(HostPath("M\xC3\xBCnchen \xE6\xB8\xAC\xE9\x87\x8F \xF0\x9F\x93\x8F.Txt")));
}

TEST_F(FileNames, WhatThePlatformCannotNameIsNotThere) {
  for (const char* name : {"bad \xFF utf", "over\xC0\xAFlong", "col:on", "que?tion", "back\\slash", "tab\tbed", "dot.",
                           "blank ", "qu\"ote", "half \xED\xA0\x80", "pi|pe", "st*r"}) {
    MakeHostFile(name);
  }
  MakeHostFile("good");
  EXPECT_EQ(All(), Names{TEXT("good")});
}

TEST_F(FileNames, OfSeveralInOtherLetterCaseTheFirstCounts) {
  MakeHostFile("twin", "lower");
  MakeHostFile("Twin", "first");
  MakeHostFile("TWIN2");
  EXPECT_EQ(All(), (Names{TEXT("Twin"), TEXT("TWIN2")}));
  EXPECT_EQ(Content(TEXT("twin")), "first");
  EXPECT_TRUE(Delete(TEXT("twin")));
  EXPECT_EQ(Content(TEXT("TWIN")), "lower");
}

TEST_F(FileNames, ALinkInOtherLetterCaseDoesNotHideAFile) {
  fs::create_symlink("/etc/passwd", HostPath("A"));
  MakeHostFile("a", "file");
  EXPECT_EQ(All(), Names{TEXT("a")});
  EXPECT_EQ(Content(TEXT("A")), "file");
}

TEST_F(FileNames, RenamingNeverOverwritesATwin) {
  MakeHostFile("Twin", "first");
  MakeHostFile("twin", "second");
  EXPECT_EQ(Error(Move(TEXT("Twin"), TEXT("twin"))), DWORD{ERROR_ACCESS_DENIED});
  std::string text;
  std::ifstream(HostPath("twin")) >> text;
  EXPECT_EQ(text, "second");
}

TEST_F(FileNames, HalvesOfSurrogatePairsAreRefused) {
  const WCHAR high[] = {u'a', 0xD800, u'b', 0};
  const WCHAR low[] = {0xDC00, 0};
  EXPECT_EQ(Error(Create(high)), DWORD{ERROR_INVALID_NAME});
  EXPECT_EQ(Error(Create(low)), DWORD{ERROR_INVALID_NAME});
}

TEST_F(FileNames, ColonsAndDotsAloneAreRefused) {
  for (const WCHAR* name :
       {TEXT(".."), TEXT("..."), TEXT(" "), TEXT(". ."), TEXT("a:b"), TEXT("sub\\.."), TEXT("C:\\a")}) {
    EXPECT_EQ(Error(Create(name)), DWORD{ERROR_INVALID_NAME}) << testing::PrintToString(name);
    EXPECT_EQ(Error(Attributes(name)), DWORD{ERROR_INVALID_NAME}) << testing::PrintToString(name);
  }
}

TEST_F(FileNames, ASingleDotIsLeftOut) {
  MakeFile(TEXT("a"), "found");
  EXPECT_EQ(Content(TEXT(".\\.\\a")), "found");
}

TEST_F(FileNames, AreAlwaysFromTheRoot) {
  MakeFile(TEXT("a"), "found");
  EXPECT_EQ(GetFileAttributesW(TEXT("Scratch\\a")), DWORD{FILE_ATTRIBUTE_ARCHIVE});
  EXPECT_EQ(GetFileAttributesW(TEXT("/scratch/A")), DWORD{FILE_ATTRIBUTE_ARCHIVE});
  EXPECT_EQ(Error(GetFileAttributesW(TEXT("a"))), DWORD{ERROR_FILE_NOT_FOUND});
}

TEST_F(FileNames, ThereIsNoNetwork) {
  EXPECT_EQ(Error(GetFileAttributesW(TEXT("\\\\Scratch"))), DWORD{ERROR_BAD_NETPATH});
  EXPECT_EQ(Error(GetFileAttributesW(TEXT("//?/Scratch"))), DWORD{ERROR_BAD_NETPATH});
  EXPECT_EQ(Error(GetFileAttributesW(TEXT("\\\\.\\Scratch"))), DWORD{ERROR_BAD_NETPATH});
}

TEST_F(FileNames, TooLongPathsAndNamesAreRefused) {
  EXPECT_EQ(Error(Create(WideString(251, u'a'))), DWORD{ERROR_FILENAME_EXCED_RANGE});  // "\Scratch\" has 9
  EXPECT_EQ(Error(GetFileAttributesW(WideString(256, u'a').c_str())), DWORD{ERROR_FILENAME_EXCED_RANGE});
  EXPECT_EQ(Error(Create(WideString(128, u'\u00E4'))), DWORD{ERROR_FILENAME_EXCED_RANGE});  // 256 bytes here
  MakeFile(WideString(250, u'a'));
  EXPECT_EQ(All().at(0).size(), 250u);
}

TEST_F(FileNames, ReservedNamesOfOtherSystemsAreNames) {
  MakeFile(TEXT("NUL"), "kept");
  MakeFile(TEXT("com5.txt"), "kept");
  EXPECT_EQ(Content(TEXT("nul")), "kept");
  EXPECT_TRUE(fs::is_regular_file(HostPath("NUL")));
}

TEST_F(FileNames, ADeviceThatIsNotThereIsNoFile) {
  const auto make = [](LPCWSTR name) {
    return CreateFileW(name, GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
  };
  EXPECT_EQ(Error(make(TEXT("COM7:"))), DWORD{ERROR_FILE_NOT_FOUND});
  EXPECT_EQ(Error(make(TEXT("\\COM7:"))), DWORD{ERROR_INVALID_NAME});
}

TEST_F(FileNames, TheRootIsAFolderThatStays) {
  for (const WCHAR* root : {TEXT("\\"), TEXT("/"), TEXT("."), TEXT("\\.\\")}) {
    EXPECT_EQ(GetFileAttributesW(root), DWORD{FILE_ATTRIBUTE_DIRECTORY});
    EXPECT_EQ(Error(CreateDirectoryW(root, nullptr) != FALSE), DWORD{ERROR_ALREADY_EXISTS});
    EXPECT_EQ(Error(RemoveDirectoryW(root) != FALSE), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_EQ(Error(DeleteFileW(root) != FALSE), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_EQ(Error(MoveFileW(root, TEXT("\\b")) != FALSE), DWORD{ERROR_ACCESS_DENIED});
  }
  EXPECT_EQ(SearchNames(TEXT("\\*")), Names{TEXT("Scratch")});
  EXPECT_EQ(SearchNames(TEXT("*.*")), Names{TEXT("Scratch")});
}

TEST_F(FileNames, ASeparatorBehindAFileIsRefused) {
  MakeFile(TEXT("a"));
  EXPECT_EQ(Error(Attributes(TEXT("a\\"))), DWORD{ERROR_INVALID_NAME});
  EXPECT_EQ(Error(Open(TEXT("a\\"))), DWORD{ERROR_INVALID_NAME});
  EXPECT_EQ(Error(Create(TEXT("b\\"))), DWORD{ERROR_INVALID_NAME});
  EXPECT_EQ(Error(Move(TEXT("a"), TEXT("b\\"))), DWORD{ERROR_INVALID_NAME});
}

TEST_F(FileNames, OneOfTwoThreadsMakesAFileInAnyLetterCase) {
  for (int i = 0; i < 200; ++i) {
    const auto number = std::to_string(i);
    const WideString digits(number.begin(), number.end());
    HANDLE lower = nullptr, upper = nullptr;
    std::thread other([&] { lower = Create(TEXT("name") + digits); });
    upper = Create(TEXT("NAME") + digits);
    other.join();
    EXPECT_NE(lower == INVALID_HANDLE_VALUE, upper == INVALID_HANDLE_VALUE);
    CloseHandle(lower == INVALID_HANDLE_VALUE ? upper : lower);
  }
  EXPECT_EQ(All().size(), 200u);
}

TEST_F(HostFiles, ListsALargeFileWithItsWholeSize) {
  MakeHostFile("large");
  ASSERT_EQ(truncate(HostPath("large").c_str(), 5LL << 30), 0);
  const WIN32_FIND_DATAW found = Search(Path(TEXT("large"))).at(0);
  EXPECT_EQ(found.nFileSizeHigh, 1u);
  EXPECT_EQ(found.nFileSizeLow, 1u << 30);
}

TEST_F(HostFiles, RefusesWhatIsNotOffered) {
  const auto open = [&](DWORD access, DWORD share, DWORD disposition, DWORD flags) {
    return Error(CreateFileW(Path(TEXT("a")).c_str(), access, share, nullptr, disposition, flags, nullptr));
  };
  for (const DWORD disposition : {2u, 4u, 5u}) {
    EXPECT_EQ(open(kBothWays, 0, disposition, 0), DWORD{ERROR_NOT_SUPPORTED});
  }
  EXPECT_EQ(open(kBothWays, 0, CREATE_NEW, 0x04000000), DWORD{ERROR_NOT_SUPPORTED});
  EXPECT_EQ(open(0, 0, CREATE_NEW, 0), DWORD{ERROR_INVALID_PARAMETER});
  EXPECT_EQ(open(kBothWays, 4, CREATE_NEW, 0), DWORD{ERROR_INVALID_PARAMETER});
  EXPECT_FALSE(Exists(TEXT("a")));
}

TEST_F(HostFiles, SearchesNeedAPlaceForTheResult) {
  MakeFile(TEXT("a"));
  WIN32_FIND_DATAW found;
  EXPECT_EQ(Error(FindFirstFileW(Path(TEXT("a")).c_str(), nullptr)), DWORD{ERROR_INVALID_PARAMETER});
  const HANDLE search = FindFirstFileW(Path(TEXT("a")).c_str(), &found);
  EXPECT_EQ(Error(FindNextFileW(search, nullptr) != FALSE), DWORD{ERROR_INVALID_PARAMETER});
  FindClose(search);
}

TEST_F(HostFiles, EndlessPatternsAreAnsweredAtOnce) {
  MakeFile(WideString(100, u'a'));
  WideString pattern;
  for (int i = 0; i < 100; ++i) pattern += TEXT("*a");
  EXPECT_EQ(SearchNames(Path(pattern)).size(), 1u);
  EXPECT_TRUE(SearchNames(Path(pattern + TEXT("b"))).empty());
}

TEST_F(HostFiles, TenThousandEntriesAreListedInTime) {
  for (int i = 0; i < 10000; ++i) MakeHostFile("file " + std::to_string(i) + ".txt");
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(All().size(), 10000u);
  const auto took = std::chrono::steady_clock::now() - start;
  EXPECT_LT(took, std::chrono::seconds(3));
  RecordProperty("milliseconds", static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(took).count()));
}

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

TEST_F(KeptAttributes, TimesAreTheMachinesInUnitsOfTheirOwn) {
  const FILETIME time = host::ToFileTime({0, 100});
  EXPECT_EQ(std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime, 116444736000000001u);
  const timespec back = host::FromFileTime(host::ToFileTime({1706693405, 123456700}));
  EXPECT_EQ(back.tv_sec, 1706693405);
  EXPECT_EQ(back.tv_nsec, 123456700);
}

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

TEST_F(FileLog, ListsWhatIsDoneWithFilesAndFaultsReachIt) {
  host::EnableCallLog(true);
  std::uint64_t start = 0;
  host::CallsSince(0, &start);
  MakeFile(TEXT("a"));
  SearchNames(Path(TEXT("*")));
  Delete(TEXT("a"));
  std::vector<std::string> names;
  for (const host::CallRecord& call : host::CallsSince(start, nullptr))
    names.push_back(std::get<std::string>(call.call));
  host::EnableCallLog(false);
  EXPECT_EQ(names, (std::vector<std::string>{"CreateFileW", "WriteFile", "CloseHandle", "FindFirstFileW",
                                             "FindNextFileW", "FindClose", "DeleteFileW"}));
}

TEST_F(FileLog, FaultsAreLimitedToAPathOrASearch) {
  const auto fail = [](const char* call, const char* on) {
    host::Fault fault;
    fault.library = "COREDLL";
    fault.call = std::string(call);
    fault.error = 112;
    fault.on = on;
    host::AddFault(fault);
  };
  MakeFile(TEXT("a"));
  MakeFile(TEXT("b"));
  fail("WriteFile", "/scratch/A");
  fail("FindNextFileW", "\\Scratch\\*");
  const HANDLE a = Open(TEXT("a")), b = Open(TEXT("b"));
  EXPECT_TRUE(WriteBytes(b, "x"));
  EXPECT_EQ(Error(WriteBytes(a, "x")), 112u);
  WIN32_FIND_DATAW found;
  const HANDLE search = FindFirstFileW(Path(TEXT("*")).c_str(), &found);
  EXPECT_EQ(Error(FindNextFileW(search, &found) != FALSE), 112u);
  for (const HANDLE handle : {a, b}) CloseHandle(handle);
  FindClose(search);
  host::ClearFaults();
}

}  // namespace
}  // namespace platform_test
