// Letters: simple upper case, and the composed forms that the supported code pages hold or have something for.

#include "posix/text/letters.h"

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

// In the order of the units: the letters that have a capital of their own, and only one that has them.
constexpr LowerCaseRange kLowerCase[] = {
    {0x0061, 0x007A, 1, -32},  {0x00E0, 0x00F6, 1, -32},  {0x00F8, 0x00FE, 1, -32},  {0x00FF, 0x00FF, 1, 121},
    {0x0101, 0x012F, 2, -1},   {0x0133, 0x0137, 2, -1},   {0x013A, 0x0148, 2, -1},   {0x014B, 0x0177, 2, -1},
    {0x017A, 0x017E, 2, -1},   {0x0183, 0x0185, 2, -1},   {0x0188, 0x0188, 1, -1},   {0x018C, 0x018C, 1, -1},
    {0x0192, 0x0192, 1, -1},   {0x0195, 0x0195, 1, 97},   {0x0199, 0x0199, 1, -1},   {0x019E, 0x019E, 1, 130},
    {0x01A1, 0x01A5, 2, -1},   {0x01A8, 0x01A8, 1, -1},   {0x01AD, 0x01AD, 1, -1},   {0x01B0, 0x01B0, 1, -1},
    {0x01B4, 0x01B6, 2, -1},   {0x01B9, 0x01B9, 1, -1},   {0x01BD, 0x01BD, 1, -1},   {0x01BF, 0x01BF, 1, 56},
    {0x01C6, 0x01C6, 1, -2},   {0x01C9, 0x01C9, 1, -2},   {0x01CC, 0x01CC, 1, -2},   {0x01CE, 0x01DC, 2, -1},
    {0x01DD, 0x01DD, 1, -79},  {0x01DF, 0x01EF, 2, -1},   {0x01F3, 0x01F3, 1, -2},   {0x01F5, 0x01F5, 1, -1},
    {0x01F9, 0x021F, 2, -1},   {0x0223, 0x0233, 2, -1},   {0x0253, 0x0253, 1, -210}, {0x0254, 0x0254, 1, -206},
    {0x0256, 0x0257, 1, -205}, {0x0259, 0x0259, 1, -202}, {0x025B, 0x025B, 1, -203}, {0x0260, 0x0260, 1, -205},
    {0x0263, 0x0263, 1, -207}, {0x0268, 0x0268, 1, -209}, {0x0269, 0x0269, 1, -211}, {0x026F, 0x026F, 1, -211},
    {0x0272, 0x0272, 1, -213}, {0x0275, 0x0275, 1, -214}, {0x0280, 0x0280, 1, -218}, {0x0283, 0x0283, 1, -218},
    {0x0288, 0x0288, 1, -218}, {0x028A, 0x028B, 1, -217}, {0x0292, 0x0292, 1, -219}, {0x03AC, 0x03AC, 1, -38},
    {0x03AD, 0x03AF, 1, -37},  {0x03B1, 0x03C1, 1, -32},  {0x03C3, 0x03CB, 1, -32},  {0x03CC, 0x03CC, 1, -64},
    {0x03CD, 0x03CE, 1, -63},  {0x03D9, 0x03EF, 2, -1},   {0x0430, 0x044F, 1, -32},  {0x0450, 0x045F, 1, -80},
    {0x0461, 0x0481, 2, -1},   {0x048B, 0x04BF, 2, -1},   {0x04C2, 0x04CE, 2, -1},   {0x04D1, 0x04F5, 2, -1},
    {0x04F9, 0x04F9, 1, -1},   {0x0501, 0x050F, 2, -1},   {0x0561, 0x0586, 1, -48},  {0x1E01, 0x1E95, 2, -1},
    {0x1EA1, 0x1EF9, 2, -1},   {0x1F00, 0x1F07, 1, 8},    {0x1F10, 0x1F15, 1, 8},    {0x1F20, 0x1F27, 1, 8},
    {0x1F30, 0x1F37, 1, 8},    {0x1F40, 0x1F45, 1, 8},    {0x1F51, 0x1F57, 2, 8},    {0x1F60, 0x1F67, 1, 8},
    {0x1F70, 0x1F71, 1, 74},   {0x1F72, 0x1F75, 1, 86},   {0x1F76, 0x1F77, 1, 100},  {0x1F78, 0x1F79, 1, 128},
    {0x1F7A, 0x1F7B, 1, 112},  {0x1F7C, 0x1F7D, 1, 126},  {0x1F80, 0x1F87, 1, 8},    {0x1F90, 0x1F97, 1, 8},
    {0x1FA0, 0x1FA7, 1, 8},    {0x1FB0, 0x1FB1, 1, 8},    {0x1FB3, 0x1FB3, 1, 9},    {0x1FC3, 0x1FC3, 1, 9},
    {0x1FD0, 0x1FD1, 1, 8},    {0x1FE0, 0x1FE1, 1, 8},    {0x1FE5, 0x1FE5, 1, 7},    {0x1FF3, 0x1FF3, 1, 9},
    {0x2170, 0x217F, 1, -16},  {0x24D0, 0x24E9, 1, -26},  {0xFF41, 0xFF5A, 1, -32}};

// A combining mark, the letters it goes with, and the letters that the two make.
struct Mark {
  char16_t mark;
  const char16_t* letters;
  const char16_t* composed;
};

constexpr Mark kMarks[] = {
    {0x0300, u"AEIOUaeiou\u00DC\u00FC", u"\u00C0\u00C8\u00CC\u00D2\u00D9\u00E0\u00E8\u00EC\u00F2\u00F9\u01DB\u01DC"},
    {0x0301, u"ACEILNORSUYZaceilnorsuyz\u00DC\u00FC",
     u"\u00C1\u0106\u00C9\u00CD\u0139\u0143\u00D3\u0154\u015A\u00DA\u00DD\u0179\u00E1\u0107\u00E9\u00ED\u013A\u0144"
     u"\u00F3\u0155\u015B\u00FA\u00FD\u017A\u01D7\u01D8"},
    {0x0302, u"ACEGHIJOSUWYaceghijosuwy",
     u"\u00C2\u0108\u00CA\u011C\u0124\u00CE\u0134\u00D4\u015C\u00DB\u0174\u0176\u00E2\u0109\u00EA\u011D\u0125\u00EE"
     u"\u0135\u00F4\u015D\u00FB\u0175\u0177"},
    {0x0303, u"AINOUainou", u"\u00C3\u0128\u00D1\u00D5\u0168\u00E3\u0129\u00F1\u00F5\u0169"},
    {0x0304, u"AEIOUaeiou\u00C4\u00DC\u00E4\u00FC\u01EA\u01EB",
     u"\u0100\u0112\u012A\u014C\u016A\u0101\u0113\u012B\u014D\u016B\u01DE\u01D5\u01DF\u01D6\u01EC\u01ED"},
    {0x0306, u"AEGIOUaegiou\u0418\u0438",
     u"\u0102\u0114\u011E\u012C\u014E\u016C\u0103\u0115\u011F\u012D\u014F\u016D\u0419\u0439"},
    {0x0307, u"CEGIZcegz", u"\u010A\u0116\u0120\u0130\u017B\u010B\u0117\u0121\u017C"},
    {0x0308, u"AEIOUYaeiouy\u0415\u0435",
     u"\u00C4\u00CB\u00CF\u00D6\u00DC\u0178\u00E4\u00EB\u00EF\u00F6\u00FC\u00FF\u0401\u0451"},
    {0x030A, u"AUau", u"\u00C5\u016E\u00E5\u016F"},
    {0x030B, u"OUou", u"\u0150\u0170\u0151\u0171"},
    {0x030C, u"ACDEGIKLNORSTUZacdegijklnorstuz\u00DC\u00FC",
     u"\u01CD\u010C\u010E\u011A\u01E6\u01CF\u01E8\u013D\u0147\u01D1\u0158\u0160\u0164\u01D3\u017D\u01CE\u010D\u010F"
     u"\u011B\u01E7\u01D0\u01F0\u01E9\u013E\u0148\u01D2\u0159\u0161\u0165\u01D4\u017E\u01D9\u01DA"},
    {0x031B, u"OUou", u"\u01A0\u01AF\u01A1\u01B0"},
    {0x0327, u"CGKLNRSTcgklnrst",
     u"\u00C7\u0122\u0136\u013B\u0145\u0156\u015E\u0162\u00E7\u0123\u0137\u013C\u0146\u0157\u015F\u0163"},
    {0x0328, u"AEIOUaeiou", u"\u0104\u0118\u012E\u01EA\u0172\u0105\u0119\u012F\u01EB\u0173"},
    {0x0338, u"=", u"\u2260"},
};

// Kana: the voiced form follows its plain one, the half-voiced one follows that.
bool TakesVoicedMark(char16_t kana) {
  const char16_t plain = kana >= 0x30A1 ? static_cast<char16_t>(kana - 0x60) : kana;
  if (plain >= 0x304B && plain <= 0x3061) return (plain & 1) != 0;
  if (plain == 0x3064 || plain == 0x3066 || plain == 0x3068) return true;
  return plain >= 0x306F && plain <= 0x307B && plain % 3 == 0;
}

char16_t ComposeKana(char16_t kana, char16_t mark) {
  if (mark == 0x3099 && (kana == 0x3046 || kana == 0x30A6)) return static_cast<char16_t>(kana + 0x4E);
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
