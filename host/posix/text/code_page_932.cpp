// Code page 932: Shift JIS with the platform's extensions, as a table taken once from this machine's own conversion.
//
// A character is encoded only when decoding gives it back. What has no character decodes to the katakana middle dot,
// and the four unused single bytes decode as the platform decodes them.
#include <iconv.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "posix/text/best_fit.h"
#include "posix/text/code_pages.h"

namespace host {
namespace {

constexpr char16_t kNoCharacter = 0x30FB;

bool IsLead(unsigned byte) { return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC); }
bool IsTrail(unsigned byte) { return byte >= 0x40 && byte <= 0xFC && byte != 0x7F; }

// One direction of the machine's conversion.
class Conversion {
 public:
  Conversion(const char* to, const char* from) : descriptor_(iconv_open(to, from)) {}
  Conversion(const Conversion&) = delete;
  Conversion& operator=(const Conversion&) = delete;
  ~Conversion() {
    if (valid()) iconv_close(descriptor_);
  }
  bool valid() const { return descriptor_ != reinterpret_cast<iconv_t>(-1); }

  // Converts one character; returns the bytes written, 0 when there is no such character.
  std::size_t Convert(const unsigned char* in, std::size_t in_size, unsigned char (&out)[4]) const {
    char* from = const_cast<char*>(reinterpret_cast<const char*>(in));
    char* to = reinterpret_cast<char*>(out);
    std::size_t left = sizeof out;
    iconv(descriptor_, nullptr, nullptr, nullptr, nullptr);
    return iconv(descriptor_, &from, &in_size, &to, &left) == 0 ? sizeof out - left : 0;
  }

 private:
  iconv_t descriptor_;
};

class JapaneseCodePage final : public CodePage {
 public:
  JapaneseCodePage(const Conversion& decoder, const Conversion& encoder) : wide_(0x10000), narrow_(0x10000) {
    for (unsigned byte = 0; byte < 0x100; ++byte) {
      if (!IsLead(byte)) wide_[byte] = DecodeSingle(decoder, byte);
    }
    for (unsigned lead = 0x81; lead <= 0xFC; ++lead) {
      for (unsigned trail = 0x40; IsLead(lead) && trail <= 0xFC; ++trail) {
        if (IsTrail(trail)) wide_[lead << 8 | trail] = DecodeWith(decoder, lead, trail);
      }
    }
    for (unsigned code = 0; code < 0x10000; ++code) AddNarrow(encoder, code);
  }

  std::size_t Decode(std::string_view text, char16_t* wide) const override {
    const auto first = static_cast<unsigned char>(text[0]);
    if (!IsLead(first)) {
      *wide = wide_[first];
      return 1;
    }
    *wide = kNoCharacter;
    const unsigned second = text.size() > 1 ? static_cast<unsigned char>(text[1]) : 0;
    if (second == 0) return 1;  // cut off: the terminating zero is never swallowed
    const char16_t found = wide_[static_cast<unsigned>(first) << 8 | second];
    if (found != 0) *wide = found;
    return 2;
  }

  NarrowCharacter Encode(char16_t wide) const override {
    const std::uint16_t code = narrow_[wide];
    const auto high = static_cast<unsigned char>(code >> 8);
    const auto low = static_cast<unsigned char>(code & 0xFF);
    if (code == 0 && wide != 0) return {};
    return high == 0 ? NarrowCharacter{{low, 0}, 1} : NarrowCharacter{{high, low}, 2};
  }

  char16_t BestFit(char16_t wide) const override { return JapaneseBestFit(wide); }

 private:
  static char16_t DecodeSingle(const Conversion& decoder, unsigned byte) {
    if (byte == 0x80 || byte == 0xA0) return static_cast<char16_t>(byte == 0x80 ? 0x80 : 0xF8F0);
    if (byte >= 0xFD) return static_cast<char16_t>(0xF8F1 + (byte - 0xFD));
    return DecodeWith(decoder, byte, 0);
  }

  // One character of one byte (second = 0) or two; 0 when there is none.
  static char16_t DecodeWith(const Conversion& decoder, unsigned first, unsigned second) {
    const unsigned char in[2] = {static_cast<unsigned char>(first), static_cast<unsigned char>(second)};
    unsigned char out[4];
    const std::size_t bytes = decoder.Convert(in, second == 0 ? 1 : 2, out);
    return bytes == 2 ? static_cast<char16_t>(out[0] | out[1] << 8) : char16_t{0};
  }

  // Of several codes for one character, the one that the machine's encoder prefers counts.
  void AddNarrow(const Conversion& encoder, unsigned code) {
    const char16_t wide = wide_[code];
    if (wide == 0) return;
    if (narrow_[wide] == 0) narrow_[wide] = static_cast<std::uint16_t>(code);
    const unsigned char in[2] = {static_cast<unsigned char>(wide & 0xFF), static_cast<unsigned char>(wide >> 8)};
    unsigned char out[4];
    if (encoder.Convert(in, 2, out) != 2) return;
    const unsigned preferred = static_cast<unsigned>(out[0]) << 8 | out[1];
    if (wide_[preferred] == wide) narrow_[wide] = static_cast<std::uint16_t>(preferred);
  }

  std::vector<char16_t> wide_;         // by code (lead byte first); 0 = none
  std::vector<std::uint16_t> narrow_;  // by character; 0 = none
};

std::unique_ptr<const CodePage> MakeCodePage932() {
  const Conversion decoder("UTF-16LE", "CP932");
  const Conversion encoder("CP932", "UTF-16LE");
  if (!decoder.valid() || !encoder.valid()) return nullptr;
  return std::make_unique<JapaneseCodePage>(decoder, encoder);
}

}  // namespace

const CodePage* CodePage932() {
  static const std::unique_ptr<const CodePage> code_page = MakeCodePage932();
  return code_page.get();
}

}  // namespace host
