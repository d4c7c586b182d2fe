// Text between the code pages and 16 bits, and upper case.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

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

TEST(Text, WhatLooksAlikeStandsForWhatTheCodePageLacks) {
  EXPECT_EQ(Narrow(TEXT("\u0100\u010D\u0142\u2013\u2032\u221A\uFF21\u3000"), 1252), "Acl\x96'vA ");
  EXPECT_EQ(Narrow(TEXT("\u00E4\u00D8\u00B5\u00A2"), 932), "aO\x83\xCA\x81\x91");
  BOOL used = TRUE;
  char text[2];
  EXPECT_EQ(WideCharToMultiByte(1252, 0, TEXT("\u0100"), 1, text, 2, "#", &used), 1);
  EXPECT_FALSE(used);
}

/// Every number but zero through the call, and all that it makes in one sum (FNV-1a).
template <class Convert>
std::uint64_t SumOfAll(const Convert& convert) {
  std::uint64_t sum = 14695981039346656037u;
  for (unsigned unit = 1; unit < 0x10000; ++unit) {
    for (const unsigned made : convert(unit)) sum = (sum ^ made) * 1099511628211u;
  }
  return sum;
}

std::vector<unsigned> NarrowUnits(unsigned unit, UINT code_page) {
  const WCHAR wide = static_cast<WCHAR>(unit);
  char text[4] = {};
  BOOL used = FALSE;
  const int length = WideCharToMultiByte(code_page, 0, &wide, 1, text, 4, nullptr, &used);
  std::vector<unsigned> made = {static_cast<unsigned>(length), static_cast<unsigned>(used)};
  for (int i = 0; i < length; ++i) made.push_back(static_cast<unsigned char>(text[i]));
  return made;
}

std::vector<unsigned> WideUnits(unsigned code, UINT code_page) {
  const char text[] = {static_cast<char>(code >> 8), static_cast<char>(code)};
  WCHAR wide[2] = {};
  const int length = MultiByteToWideChar(code_page, MB_PRECOMPOSED, text, 2, wide, 2);
  return {static_cast<unsigned>(length), wide[0], wide[1]};
}

TEST(Text, EveryCharacterIsNarrowedAlikeOnEveryHost) {
  EXPECT_EQ(SumOfAll([](unsigned unit) { return NarrowUnits(unit, 1252); }), 0x7E42698CDBB4B90Du);
  EXPECT_EQ(SumOfAll([](unsigned unit) { return NarrowUnits(unit, 932); }), 0xED35BB83E9C93C26u);
}

TEST(Text, EveryPairOfBytesIsWidenedAlikeOnEveryHost) {
  EXPECT_EQ(SumOfAll([](unsigned code) { return WideUnits(code, 1252); }), 0x415B6E4DB9841E51u);
  EXPECT_EQ(SumOfAll([](unsigned code) { return WideUnits(code, 932); }), 0x8D73C5E606E37439u);
}

TEST(Text, CombiningMarksThatJoinToWhatTheCodePageLacksAreLookedAtAlike) {
  EXPECT_EQ(Narrow(TEXT("C\u0301\u00FC\u0304"), 1252, WC_COMPOSITECHECK), "Cu");
  EXPECT_EQ(Narrow(TEXT("Y\u0308"), 932, WC_COMPOSITECHECK), "Y?");
  EXPECT_EQ(Narrow(TEXT("D\u0304"), 1252, WC_COMPOSITECHECK), "D\xAF");
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

TEST(Text, LettersWithoutACapitalOfTheirOwnStay) {
  WCHAR text[] = TEXT("\u00DF\u0131\u017F\u03C2\u0138");
  const WideString before = text;
  CharUpperBuffW(text, static_cast<DWORD>(before.size()));
  EXPECT_EQ(WideString(text), before);
}

TEST(Text, UpperCasesOnlyAsFarAsAsked) {
  WCHAR text[] = TEXT("abc");
  EXPECT_EQ(CharUpperBuffW(text, 2), 2u);
  EXPECT_EQ(WideString(text), TEXT("ABc"));
  EXPECT_EQ(CharUpperBuffW(text, 0), 0u);
}

}  // namespace
