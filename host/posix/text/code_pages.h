// The ANSI code pages the instrument is sold with: 1252 (western European) and 932 (Japanese).
#ifndef QXHOST_POSIX_TEXT_CODE_PAGES_H
#define QXHOST_POSIX_TEXT_CODE_PAGES_H

#include <cstddef>
#include <string_view>

namespace host {

/// One character of narrow text.
struct NarrowCharacter {
  unsigned char bytes[2] = {0, 0};
  int length = 0;  ///< 1 or 2; 0 = the code page has no such character
};

class CodePage {
 public:
  CodePage() = default;
  CodePage(const CodePage&) = delete;
  CodePage& operator=(const CodePage&) = delete;
  virtual ~CodePage() = default;

  /// Decodes the first character of `text` (not empty); returns how many bytes it has.
  virtual std::size_t Decode(std::string_view text, char16_t* wide) const = 0;
  virtual NarrowCharacter Encode(char16_t wide) const = 0;
  /// The character that stands for one that Encode does not know; 0 when none does.
  virtual char16_t BestFit(char16_t wide) const = 0;
};

/// The code page of this number, 0 meaning the ANSI code page; null when it is not supported.
const CodePage* FindCodePage(unsigned number);

const CodePage* CodePage1252();
/// Null when this machine cannot convert it.
const CodePage* CodePage932();

}  // namespace host

#endif
