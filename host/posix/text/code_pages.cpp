#include "posix/text/code_pages.h"

#include <atomic>

#include "posix/text/best_fit.h"

namespace host {
namespace {

std::atomic<unsigned> ansi_code_page{1252};

// Bytes 80 to 9F; the five that the code page leaves undefined stand for the control of the same number.
constexpr char16_t kUpperControls[32] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                         0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                         0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                         0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

class WesternCodePage final : public CodePage {
 public:
  std::size_t Decode(std::string_view text, char16_t* wide) const override {
    const auto byte = static_cast<unsigned char>(text[0]);
    *wide = byte >= 0x80 && byte < 0xA0 ? kUpperControls[byte - 0x80] : byte;
    return 1;
  }

  NarrowCharacter Encode(char16_t wide) const override {
    if (wide < 0x80 || (wide >= 0xA0 && wide < 0x100)) return {{static_cast<unsigned char>(wide), 0}, 1};
    for (unsigned i = 0; i < 32; ++i) {
      if (kUpperControls[i] == wide) return {{static_cast<unsigned char>(0x80 + i), 0}, 1};
    }
    return {};
  }

  char16_t BestFit(char16_t wide) const override { return WesternBestFit(wide); }
};

}  // namespace

const CodePage* CodePage1252() {
  static const WesternCodePage code_page;
  return &code_page;
}

const CodePage* FindCodePage(unsigned number) {
  if (number == 0) number = ansi_code_page.load(std::memory_order_relaxed);
  if (number == 1252) return CodePage1252();
  return number == 932 ? CodePage932() : nullptr;
}

bool SetAnsiCodePage(unsigned number) {
  if (number == 0 || FindCodePage(number) == nullptr) return false;
  ansi_code_page = number;
  return true;
}

}  // namespace host
