// The text of a reply or message: a reply word and its fields.
#ifndef QXCM_PROTOCOL_REPLY_H
#define QXCM_PROTOCOL_REPLY_H

#include <cstdint>
#include <string>
#include <string_view>

namespace qxcm {

/// Reply("OMD").AddInt("ANG", 1) is "OMD,ANG=1". Values go in as they stand, without escapes.
class Reply {
 public:
  explicit Reply(std::string_view word);

  Reply& Add(std::string_view key, std::string_view value);
  /// In decimal.
  Reply& AddInt(std::string_view key, std::int32_t value);
  /// In upper-case hexadecimal, at least so many digits (at most 8).
  Reply& AddHex(std::string_view key, std::uint32_t value, int digits);

  const std::string& text() const { return text_; }

 private:
  std::string text_;
};

/// A value that may hold commas and backslashes, each with a backslash before it, so that it stays one field.
std::string Escaped(std::string_view value);

}  // namespace qxcm

#endif
