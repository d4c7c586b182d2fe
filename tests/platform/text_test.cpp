// Text between the code pages and 16 bits, and upper case.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

namespace {

using WideString = std::basic_string<WCHAR>;

WideString Widen(const std::string& text, UINT code_page) {
  WCHAR wide[64];
  const int length =
      MultiByteToWideChar(code_page, MB_PRECOMPOSED, text.data(), static_cast<int>(text.size()), wide, 64);
  return {wide, static_cast<std::size_t>(length)};
}

std::string Narrow(const WideString& wide, UINT code_page, DWORD flags = 0) {
  char text[64];
  const int length =
      WideCharToMultiByte(code_page, flags, wide.data(), static_cast<int>(wide.size()), text, 64, nullptr, nullptr);
  return {text, static_cast<std::size_t>(length)};
}

TEST(Text, WesternTextWidensAndNarrows) {
  EXPECT_EQ(Widen("M\xFCnchen \x80", 1252), TEXT("M\u00FCnchen \u20AC"));
  EXPECT_EQ(Narrow(TEXT("M\u00FCnchen \u20AC"), 1252), "M\xFCnchen \x80");
}

TEST(Text, EveryWesternByteComesBack) {
  std::string all;
  for (int byte = 1; byte < 256; ++byte) all.push_back(static_cast<char>(byte));
  for (std::size_t i = 0; i < all.size(); i += 50) {
    const std::string part = all.substr(i, 50);
    EXPECT_EQ(Narrow(Widen(part, 1252), 1252), part);
  }
}

TEST(Text, UndefinedWesternBytesAreTheControlsOfTheSameNumber) {
  const WCHAR expected[] = {0x81, 0x8D, 0x8F, 0x90, 0x9D, 0};
  EXPECT_EQ(Widen("\x81\x8D\x8F\x90\x9D", 1252), expected);
}

TEST(Text, JapaneseTextWidensAndNarrows) {
  EXPECT_EQ(Widen("\x91\xAA\x97\xCA\\~", 932), TEXT("\u6E2C\u91CF\\~"));
  EXPECT_EQ(Narrow(TEXT("\u6E2C\u91CF\\~"), 932), "\x91\xAA\x97\xCA\\~");
}

TEST(Text, HalfWidthKatakanaIsOneByte) {
  EXPECT_EQ(Widen("\xB1\xDF", 932), TEXT("\uFF71\uFF9F"));
  EXPECT_EQ(Narrow(TEXT("\uFF71\uFF9F"), 932), "\xB1\xDF");
}

TEST(Text, JapaneseExtensionsFollowThePlatform) {
  EXPECT_EQ(Widen("\x87\x40\x81\x60\x81\x7C", 932), TEXT("\u2460\uFF5E\uFF0D"));
  EXPECT_EQ(Narrow(TEXT("\u2252\u7E8A\u2460"), 932), "\x81\xE0\xFA\x5C\x87\x40");
}

TEST(Text, WhatTheCodePageLacksBecomesTheDefaultCharacter) {
  EXPECT_EQ(Narrow(TEXT("a\u3042b"), 1252), "a?b");
  char text[8] = {};
  BOOL used = FALSE;
  EXPECT_EQ(WideCharToMultiByte(1252, 0, TEXT("\u3042"), 1, text, 8, "#", &used), 1);
  EXPECT_STREQ(text, "#");
  EXPECT_TRUE(used);
  WideCharToMultiByte(1252, 0, TEXT("a"), 1, text, 8, "#", &used);
  EXPECT_FALSE(used);
}

TEST(Text, CombiningMarksJoinTheirLettersWhenAsked) {
  EXPECT_EQ(Narrow(TEXT("e\u0301u\u0308x\u0301"), 1252, WC_COMPOSITECHECK).substr(0, 3), "\xE9\xFCx");
  EXPECT_EQ(Narrow(TEXT("\u304B\u3099\u30CF\u309A"), 932, WC_COMPOSITECHECK), "\x82\xAA\x83\x70");
}

TEST(Text, LengthMinusOneMeansUpToAndWithTheZero) {
  WCHAR wide[8] = {};
  EXPECT_EQ(MultiByteToWideChar(1252, 0, "abc", -1, wide, 8), 4);
  EXPECT_EQ(WideString(wide), TEXT("abc"));
  char text[8] = {};
  EXPECT_EQ(WideCharToMultiByte(1252, 0, TEXT("abc"), -1, text, 8, nullptr, nullptr), 4);
  EXPECT_STREQ(text, "abc");
}

TEST(Text, SizeZeroAsksForTheLength) {
  EXPECT_EQ(MultiByteToWideChar(932, 0, "\x91\xAA!", 3, nullptr, 0), 2);
  EXPECT_EQ(WideCharToMultiByte(932, 0, TEXT("\u6E2C!"), 2, nullptr, 0, nullptr, nullptr), 3);
}

TEST(Text, ABufferThatIsTooSmallFails) {
  WCHAR wide[2];
  char text[2];
  EXPECT_EQ(MultiByteToWideChar(1252, 0, "abc", 3, wide, 2), 0);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
  EXPECT_EQ(WideCharToMultiByte(932, 0, TEXT("a\u6E2C"), 2, text, 2, nullptr, nullptr), 0);
  EXPECT_EQ(GetLastError(), DWORD{ERROR_INSUFFICIENT_BUFFER});
}

TEST(Text, BadArgumentsFail) {
  WCHAR wide[4];
  char text[4];
  const auto failed = [](int result) { return result == 0 && GetLastError() == DWORD{ERROR_INVALID_PARAMETER}; };
  EXPECT_TRUE(failed(MultiByteToWideChar(1252, 0, nullptr, 1, wide, 4)));
  EXPECT_TRUE(failed(MultiByteToWideChar(1252, 0, "a", 0, wide, 4)));
  EXPECT_TRUE(failed(MultiByteToWideChar(1252, 0, "a", 1, nullptr, 4)));
  EXPECT_TRUE(failed(MultiByteToWideChar(12345, 0, "a", 1, wide, 4)));
  EXPECT_TRUE(failed(WideCharToMultiByte(1252, 0, TEXT("a"), 0, text, 4, nullptr, nullptr)));
}

TEST(Text, UpperCasesLettersOfEveryScript) {
  WCHAR text[] = TEXT("com5:\u00E9\u00FF\u0151\u03C9\u03AC\u0436\u0451\uFF41\u00DF9_");
  const DWORD length = sizeof text / sizeof text[0] - 1;
  EXPECT_EQ(CharUpperBuffW(text, length), length);
  EXPECT_EQ(WideString(text), TEXT("COM5:\u00C9\u0178\u0150\u03A9\u0386\u0416\u0401\uFF21\u00DF9_"));
}

TEST(Text, UpperCasesOnlyAsFarAsAsked) {
  WCHAR text[] = TEXT("abc");
  EXPECT_EQ(CharUpperBuffW(text, 2), 2u);
  EXPECT_EQ(WideString(text), TEXT("ABc"));
  EXPECT_EQ(CharUpperBuffW(text, 0), 0u);
}

}  // namespace
