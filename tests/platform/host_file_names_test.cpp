// Names on this host: how they are spelled here, and letter case.
#include <string>

#include "instrument_files.h"

namespace platform_test {
namespace {

using FileNames = InstrumentFiles;

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

TEST_F(FileNames, OfMoreThan255BytesOnThisMachineAreRefused) {
  EXPECT_EQ(Error(Create(WideString(128, u'\u00E4'))), DWORD{ERROR_FILENAME_EXCED_RANGE});
}

}  // namespace
}  // namespace platform_test
