// Letters: simple upper case, and the composed forms that the supported code pages hold.

#include "common/text/text.h"

namespace host {
namespace {

// Every `step`-th unit from first to last has its capital `shift` units away.
struct LowerCaseRange {
  char16_t first;
  char16_t last;
  int step;
  int shift;
};

// In the order of the units.
constexpr LowerCaseRange kLowerCase[] = {
    {0x0061, 0x007A, 1, -32}, {0x00E0, 0x00F6, 1, -32}, {0x00F8, 0x00FE, 1, -32},  // Latin
    {0x00FF, 0x00FF, 1, 121}, {0x0101, 0x012F, 2, -1},  {0x0133, 0x0137, 2, -1},   // Latin Extended-A
    {0x013A, 0x0148, 2, -1},  {0x014B, 0x0177, 2, -1},  {0x017A, 0x017E, 2, -1},   //
    {0x01CE, 0x01DC, 2, -1},  {0x01DF, 0x01EF, 2, -1},  {0x01F9, 0x021F, 2, -1},   // Latin Extended-B, pairs only
    {0x03AC, 0x03AC, 1, -38}, {0x03AD, 0x03AF, 1, -37}, {0x03B1, 0x03C1, 1, -32},  // Greek
    {0x03C2, 0x03C2, 1, -31}, {0x03C3, 0x03CB, 1, -32}, {0x03CC, 0x03CC, 1, -64},  //
    {0x03CD, 0x03CE, 1, -63}, {0x0430, 0x044F, 1, -32}, {0x0450, 0x045F, 1, -80},  // Cyrillic
    {0x0461, 0x0481, 2, -1},  {0x048B, 0x04BF, 2, -1},  {0x04C2, 0x04CE, 2, -1},   //
    {0x04CF, 0x04CF, 1, -15}, {0x04D1, 0x052F, 2, -1},  {0x0561, 0x0586, 1, -48},  // Armenian
    {0x1E01, 0x1E95, 2, -1},  {0x1EA1, 0x1EFF, 2, -1},  {0x2170, 0x217F, 1, -16},  // Latin, small numerals
    {0x24D0, 0x24E9, 1, -26}, {0xFF41, 0xFF5A, 1, -32},                            // circled and full-width Latin
};

// A combining mark, the letters it goes with, and the letters that the two make.
struct Mark {
  char16_t mark;
  const char16_t* letters;
  const char16_t* composed;
};

constexpr Mark kMarks[] = {
    {0x0300, u"AEIOUaeiou", u"\u00C0\u00C8\u00CC\u00D2\u00D9\u00E0\u00E8\u00EC\u00F2\u00F9"},
    {0x0301, u"AEIOUYaeiouy", u"\u00C1\u00C9\u00CD\u00D3\u00DA\u00DD\u00E1\u00E9\u00ED\u00F3\u00FA\u00FD"},
    {0x0302, u"AEIOUaeiou", u"\u00C2\u00CA\u00CE\u00D4\u00DB\u00E2\u00EA\u00EE\u00F4\u00FB"},
    {0x0303, u"ANOano", u"\u00C3\u00D1\u00D5\u00E3\u00F1\u00F5"},
    {0x0308, u"AEIOUYaeiouy", u"\u00C4\u00CB\u00CF\u00D6\u00DC\u0178\u00E4\u00EB\u00EF\u00F6\u00FC\u00FF"},
    {0x030A, u"Aa", u"\u00C5\u00E5"},
    {0x030C, u"SZsz", u"\u0160\u017D\u0161\u017E"},
    {0x0327, u"Cc", u"\u00C7\u00E7"},
};

// Kana: the voiced form follows its plain one, the half-voiced one follows that.
bool TakesVoicedMark(char16_t kana) {
  const char16_t plain = kana >= 0x30A1 ? static_cast<char16_t>(kana - 0x60) : kana;
  if (plain >= 0x304B && plain <= 0x3061) return (plain & 1) != 0;
  if (plain == 0x3064 || plain == 0x3066 || plain == 0x3068) return true;
  return plain >= 0x306F && plain <= 0x307B && plain % 3 == 0;
}

char16_t ComposeKana(char16_t kana, char16_t mark) {
  if (mark == 0x3099 && kana == 0x30A6) return 0x30F4;
  if (mark == 0x3099 && (kana == 0x309D || kana == 0x30FD)) return static_cast<char16_t>(kana + 1);  // iteration marks
  if (!TakesVoicedMark(kana)) return 0;
  const char16_t plain = kana >= 0x30A1 ? static_cast<char16_t>(kana - 0x60) : kana;
  if (mark == 0x3099) return static_cast<char16_t>(kana + 1);
  return plain >= 0x306F ? static_cast<char16_t>(kana + 2) : char16_t{0};
}

}  // namespace

char16_t UpperCase(char16_t unit) {
  for (const LowerCaseRange& range : kLowerCase) {
    if (unit < range.first) return unit;
    if (unit > range.last) continue;
    return (unit - range.first) % range.step == 0 ? static_cast<char16_t>(unit + range.shift) : unit;
  }
  return unit;
}

char16_t Compose(char16_t letter, char16_t mark) {
  if (mark == 0x3099 || mark == 0x309A) return ComposeKana(letter, mark);
  for (const Mark& row : kMarks) {
    if (row.mark != mark) continue;
    for (int i = 0; row.letters[i] != 0; ++i) {
      if (row.letters[i] == letter) return row.composed[i];
    }
  }
  return 0;
}

}  // namespace host
