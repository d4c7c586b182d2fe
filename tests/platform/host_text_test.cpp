// What only this host's text has: a choice of ANSI code page, the whole of code page 932, UTF-8.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "common/text/text.h"
#include "common/text/utf.h"
#include "posix/text/code_pages.h"

namespace {

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
  EXPECT_EQ(std::u16string(wide, 3), u"\u30FBz\u30FB");
}

TEST(CodePage932, EveryCharacterItDecodesComesBack) {
  const host::CodePage* page = host::FindCodePage(932);
  ASSERT_NE(page, nullptr);
  int characters = 0;
  for (unsigned unit = 0; unit < 0x10000; ++unit) {
    const host::NarrowCharacter narrow = page->Encode(static_cast<char16_t>(unit));
    if (narrow.length == 0) continue;
    char16_t back = 0;
    page->Decode({reinterpret_cast<const char*>(narrow.bytes), static_cast<std::size_t>(narrow.length)}, &back);
    EXPECT_EQ(back, unit);
    ++characters;
  }
  EXPECT_GT(characters, 9000);
}

TEST(UpperCase, CoversTheScriptsOfTheInstrumentsLanguages) {
  EXPECT_EQ(host::UpperCase(u'\u03C2'), u'\u03A3');
  EXPECT_EQ(host::UpperCase(u'\u045F'), u'\u040F');
  EXPECT_EQ(host::UpperCase(u'\u017E'), u'\u017D');
  EXPECT_EQ(host::UpperCase(u'\u0105'), u'\u0104');
  for (const char16_t unit : u"\u0138\u00F7\u0130\u00D7\u3042[`{@") EXPECT_EQ(host::UpperCase(unit), unit);
}

TEST(Utf, ConvertsBothWaysAndReplacesWhatIsMalformed) {
  const std::string text = "a\xC3\xA9\xE6\xB8\xAC\xF0\x9F\x93\x90";
  EXPECT_EQ(host::Utf8ToWide(text), u"a\u00E9\u6E2C\U0001F4D0");
  EXPECT_EQ(host::WideToUtf8(u"a\u00E9\u6E2C\U0001F4D0"), text);
  EXPECT_EQ(host::Utf8ToWide("\xC0\x80|\xED\xA0\x80|\xE6\xB8"), u"\uFFFD\uFFFD|\uFFFD\uFFFD\uFFFD|\uFFFD\uFFFD");
  const char16_t lone[] = {0xDC00, 'x', 0xD800, 0};
  EXPECT_EQ(host::WideToUtf8(lone), "\xEF\xBF\xBDx\xEF\xBF\xBD");
}

}  // namespace
