// The rules of the receiving side once more, as slow and as literal as can be: what the decoder and the splitter are
// compared with.
#ifndef QXTEST_UNIT_PROTOCOL_REFERENCE_CODEC_H
#define QXTEST_UNIT_PROTOCOL_REFERENCE_CODEC_H

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qxtest {

/// What a stream of bytes sets off: "ack" (an enquiry), "nak" (a wrong checksum), or a command text behind ":".
using Happenings = std::vector<std::string>;

/// Every byte goes through the rules on its own.
class ReferenceDecoder {
 public:
  void Take(std::string_view bytes) {
    for (const char byte : bytes) TakeByte(byte);
  }
  const Happenings& happenings() const { return happenings_; }

 private:
  void TakeByte(char byte);
  void ValidateFrame();

  std::vector<char> frame_;
  Happenings happenings_;
};

/// A command text cut into its word and fields.
struct ReferenceCommand {
  std::string word;
  std::optional<std::map<std::string, std::string>> fields;  // none when a field is malformed
};
ReferenceCommand ReferenceSplit(const std::string& text);

}  // namespace qxtest

#endif
