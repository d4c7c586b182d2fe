// Text beyond the platform's calls: a choice of ANSI code page, UTF-8.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "common/text/text.h"
#include "common/text/utf.h"

namespace {

using host::WideString;

TEST(AnsiCodePage, IsChosenAmongTheSupportedOnes) {
  WCHAR wide[2] = {};
  EXPECT_TRUE(host::SetAnsiCodePage(932));
  EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "\x91\xAA", 2, wide, 2), 1);
  EXPECT_FALSE(host::SetAnsiCodePage(1250));
  EXPECT_FALSE(host::SetAnsiCodePage(0));
  EXPECT_TRUE(host::SetAnsiCodePage(1252));
  EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "\x91\xAA", 2, wide, 2), 2);
}

TEST(CodePage932, DecodesWhatHasNoCharacterAsTheMiddleDot) {
  WCHAR wide[4] = {};
  EXPECT_EQ(MultiByteToWideChar(932, 0, "\x85\x40z\x91", 4, wide, 4), 3);
  EXPECT_EQ(WideString(wide, 3), TEXT("\u30FBz\u30FB"));
}

TEST(UpperCase, CoversTheScriptsOfTheInstrumentsLanguages) {
  EXPECT_EQ(host::UpperCase(TEXT('\u045F')), TEXT('\u040F'));
  EXPECT_EQ(host::UpperCase(TEXT('\u017E')), TEXT('\u017D'));
  EXPECT_EQ(host::UpperCase(TEXT('\u0105')), TEXT('\u0104'));
  for (const WCHAR unit : TEXT("\u0138\u00F7\u0130\u00D7\u3042[`{@")) EXPECT_EQ(host::UpperCase(unit), unit);
}

TEST(Utf, ConvertsBothWaysAndReplacesWhatIsMalformed) {
  const std::string text = "a\xC3\xA9\xE6\xB8\xAC\xF0\x9F\x93\x90";
  EXPECT_EQ(host::Utf8ToWide(text), TEXT("a\u00E9\u6E2C\U0001F4D0"));
  EXPECT_EQ(host::WideToUtf8(TEXT("a\u00E9\u6E2C\U0001F4D0")), text);
  EXPECT_EQ(host::Utf8ToWide("\xC0\x80|\xED\xA0\x80|\xE6\xB8"), TEXT("\uFFFD\uFFFD|\uFFFD\uFFFD\uFFFD|\uFFFD\uFFFD"));
  const WCHAR lone[] = {0xDC00, 'x', 0xD800, 0};
  EXPECT_EQ(host::WideToUtf8(lone), "\xEF\xBF\xBDx\xEF\xBF\xBD");
}

}  // namespace
