// Names of the instrument: from the root on, and what no path may say.
#include <string>
#include <thread>

#include "instrument_files.h"

namespace platform_test {
namespace {

using FileNames = InstrumentFiles;

TEST_F(FileNames, HalvesOfSurrogatePairsAreRefused) {
  const WCHAR high[] = {TEXT('a'), 0xD800, TEXT('b'), 0};
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
  EXPECT_EQ(Error(Create(WideString(251, TEXT('a')))), DWORD{ERROR_FILENAME_EXCED_RANGE});  // "\Scratch\" has 9
  EXPECT_EQ(Error(GetFileAttributesW(WideString(256, TEXT('a')).c_str())), DWORD{ERROR_FILENAME_EXCED_RANGE});
  MakeFile(WideString(250, TEXT('a')));
  EXPECT_EQ(All().at(0).size(), 250u);
}

TEST_F(FileNames, ReservedNamesOfOtherSystemsAreNames) {
  MakeFile(TEXT("NUL"), "kept");
  MakeFile(TEXT("com5.txt"), "kept");
  EXPECT_EQ(Content(TEXT("nul")), "kept");
  EXPECT_EQ(All(), (Names{TEXT("com5.txt"), TEXT("NUL")}));
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
