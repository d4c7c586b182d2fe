// Composition of reply texts.
#include "protocol/reply.h"

#include <cinttypes>
#include <cstdio>

namespace qxcm {

namespace {
constexpr std::size_t kUsualLength = 128;  // most replies fit without growing
constexpr std::size_t kFieldBuffer = 64;
}  // namespace

Reply::Reply(std::string_view word) {
  text_.reserve(kUsualLength);
  text_.append(word);
}

Reply& Reply::Add(std::string_view key, std::string_view value) {
  text_.append(1, ',').append(key).append(1, '=').append(value);
  return *this;
}

Reply& Reply::AddInt(std::string_view key, std::int32_t value) {
  char number[kFieldBuffer];
  std::snprintf(number, sizeof number, "%" PRId32, value);
  return Add(key, number);
}

Reply& Reply::AddHex(std::string_view key, std::uint32_t value, int digits) {
  char number[kFieldBuffer];
  std::snprintf(number, sizeof number, "%0*" PRIX32, digits, value);
  return Add(key, number);
}

std::string Escaped(std::string_view value) {
  std::string escaped;
  escaped.reserve(value.size());
  for (const char c : value) {
    if (c == ',' || c == '\\') escaped.push_back('\\');
    escaped.push_back(c);
  }
  return escaped;
}

}  // namespace qxcm
