#include "posix/text/best_fit.h"

#include <iterator>

namespace host {
namespace {

/// Characters in a row, and what stands for each; kNone where nothing does.
struct BestFitRow {
  char16_t first;
  const char16_t* instead;
};

constexpr char16_t kNone = u'.';

// In the order of the characters, as in the next.
constexpr BestFitRow kWestern[] = {
    {0x0100,
     u"AaAaAaCcCcCcCcDd\u00D0dEeEeEeEeEeGgGgGgGgHhHhIiIiIiIiIi..JjKk.LlLlLl..LlNnNnNn...OoOoOo..RrRrRrSsSsSs.."
     u"TtTtTtUuUuUuUuUuUuWwYy.ZzZz...b"},
    {0x0189, u"\u00D0"},
    {0x0191, u"\u0192.....I..l....OOo"},
    {0x01AB, u"t..TUu.....z"},
    {0x01C0, u"|..!"},
    {0x01CD, u"AaIiOoUuUuUuUuUu.Aa....GgGgKkOoOo..j"},
    {0x0261, u"g"},
    {0x02B9, u"'\".'"},
    {0x02C4, u"^...'\u00AF\u00B4`._"},
    {0x02DA, u"\u00B0"},
    {0x0300, u"`\u00B4^~\u00AF\u00AF..\u00A8.\u00B0...\""},
    {0x0327, u"\u00B8"},
    {0x0331, u"__"},
    {0x037E, u";"},
    {0x0393, u"G....T"},
    {0x03A3, u"S..F..O"},
    {0x03B1, u"a\u00DF.de"},
    {0x03BC, u"\u00B5...p..st.f"},
    {0x04BB, u"h"},
    {0x0589, u":"},
    {0x066A, u"%"},
    {0x2000, u"       "},
    {0x2010, u"--.....="},
    {0x2024, u"\u00B7"},
    {0x2032, u"'..`"},
    {0x2044, u"/"},
    {0x2070, u"\u00B0...45678"},
    {0x207F, u"n0123456789"},
    {0x20A1, u"\u00A2..\u00A3..P"},
    {0x2102, u"C....E..gHHHh.IILl.N..PPQRRR"},
    {0x2124, u"Z...Z.K\u00C5BCeeEF.Mo"},
    {0x2205, u"\u00D8"},
    {0x2212, u"-\u00B1./\\*\u00B0\u00B7v...8....|.....n"},
    {0x2236, u":.....~"},
    {0x2248, u"\u02DC"},
    {0x2261, u"=..==....\u00AB\u00BB"},
    {0x22C5, u"\u00B7"},
    {0x2302, u"\u00A6^"},
    {0x2310, u"\u00AC"},
    {0x2320, u"()"},
    {0x2329, u"<>"},
    {0x2500, u"-.\u00A6"},
    {0x250C, u"+...+...+...+...+"},
    {0x2524, u"\u00A6"},
    {0x252C, u"-"},
    {0x2534, u"-"},
    {0x253C, u"+"},
    {0x2550, u"-\u00A6++++++++++++\u00A6\u00A6\u00A6\u00A6\u00A6\u00A6------+++"},
    {0x2580, u"\u00AF..._...\u00A6...\u00A6...\u00A6\u00A6\u00A6\u00A6"},
    {0x25A0, u"\u00A6"},
    {0x263C, u"\u00A4"},
    {0x2758, u"|"},
    {0x3000, u" "},
    {0x3008, u"<>\u00AB\u00BB"},
    {0x301A, u"[]"},
    {0x30FB, u"\u00B7"},
};

constexpr BestFitRow kJapanese[] = {
    {0x00A1,
     u"!\uFFE0\uFFE1.\\|..ca\u226A\uFFE2-R\uFFE3..23.\u03BC.\u30FB\uFF0C1o\u226B....AAAAAAACEEEEIIIIDNOOOOO."
     u"OUUUUYTsaaaaaaaceeeeiiiidnooooo.ouuuuyty"},
    {0x3094, u"\u30F4"},
};

template <std::size_t count>
char16_t Find(const BestFitRow (&rows)[count], char16_t character) {
  for (const BestFitRow& row : rows) {
    if (character < row.first) return 0;
    for (int i = 0; row.instead[i] != 0; ++i) {
      if (row.first + i == character) return row.instead[i] == kNone ? u'\0' : row.instead[i];
    }
  }
  return 0;
}

}  // namespace

char16_t WesternBestFit(char16_t character) {
  constexpr char16_t kWideQuestionMark = 0xFF1F;  // the plain one stands for what is missing
  constexpr char16_t kFirstWide = 0xFF01, kLastWide = 0xFF5E, kWideToPlain = 0xFEE0;
  const bool wide = character >= kFirstWide && character <= kLastWide;
  if (wide) return character == kWideQuestionMark ? u'\0' : static_cast<char16_t>(character - kWideToPlain);
  return Find(kWestern, character);
}

char16_t JapaneseBestFit(char16_t character) { return Find(kJapanese, character); }

}  // namespace host
