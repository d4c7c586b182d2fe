// The straw-man codec.
#include "straw_man.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace qxbench {

namespace {

/// Words for a table of any size; the first is the one the benchmarks send.
std::string_view Word(std::size_t n) {
  static const auto* const kWords = [] {
    auto* words = new std::array<std::string, 256>;
    for (std::size_t i = 0; i < words->size(); ++i) {
      (*words)[i] = "XX_" + std::string{static_cast<char>('A' + i % 26), static_cast<char>('A' + i / 26), 'X'};
    }
    (*words)[0] = "ST_OMD";
    return words;
  }();
  return (*kWords)[n];
}

}  // namespace

StrawMan::StrawMan(std::size_t words) {
  for (std::size_t i = 0; i < words; ++i) words_.emplace(Word(i), static_cast<int>(i));
}

bool StrawMan::Next(std::string_view& bytes) {
  const auto* end = static_cast<const char*>(std::memchr(bytes.data(), '\r', bytes.size()));
  if (end == nullptr) return false;
  const auto length = static_cast<std::size_t>(end - bytes.data());
  const std::string_view frame = bytes.substr(0, length);
  bytes.remove_prefix(length + 1);
  unsigned sum = 0;
  for (const char byte : frame.substr(0, length - 1)) sum += static_cast<unsigned char>(byte);
  if (static_cast<char>((sum & 0x3F) + 0x20) != frame.back()) return false;
  std::string_view text = frame.substr(2, length - 4);
  const std::size_t word_end = std::min(text.find(','), text.size());
  const bool known = words_.find(text.substr(0, word_end)) != words_.end();
  count_ = 0;
  for (std::size_t at = word_end; at < text.size() && count_ < kMostFields;) {
    const std::size_t next = std::min(text.find(',', at + 1), text.size());
    const std::string_view field = text.substr(at + 1, next - at - 1);
    const std::size_t equals = field.find('=');
    fields_[count_++] = {field.substr(0, equals), field.substr(equals + 1)};
    at = next;
  }
  return known;
}

std::string_view StrawMan::Value(std::string_view key) const {
  for (std::size_t i = 0; i < count_; ++i) {
    if (fields_[i].key == key) return fields_[i].value;
  }
  return {};
}

}  // namespace qxbench
