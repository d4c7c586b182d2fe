// Code page 932 as a table of this host.
#include <gtest/gtest.h>
#include <windows.h>

#include "posix/text/code_pages.h"

namespace {

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

}  // namespace
