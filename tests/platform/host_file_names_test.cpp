// Names on this host: how they are spelled here, letter case, and what no path may say.
#include <string>
#include <thread>

#include "host_files.h"

namespace platform_test {
namespace {

using FileNames = HostFiles;

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

}  // namespace
}  // namespace platform_test
