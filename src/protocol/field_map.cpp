// Splitting command texts.
#include "protocol/field_map.h"

#include <algorithm>
#include <cstring>

namespace qxcm {

namespace {

constexpr char kSeparator = ',';
constexpr char kEscape = '\\';
constexpr std::size_t kFew = 16;  // up to so many fields, looking at each is faster than order

/// The length of the token that begins at `begin`: up to the next comma that is not escaped.
std::size_t TokenLength(const char* begin, const char* end) {
  for (const char* at = begin;;) {
    const auto* comma = static_cast<const char*>(std::memchr(at, kSeparator, static_cast<std::size_t>(end - at)));
    if (comma == nullptr) return static_cast<std::size_t>(end - begin);
    const char* escapes = comma;
    while (escapes != begin && escapes[-1] == kEscape) --escapes;
    if ((comma - escapes) % 2 == 0) return static_cast<std::size_t>(comma - begin);
    at = comma + 1;
  }
}

/// Deletes each backslash and keeps the character behind it; returns the new length.
std::size_t Unescape(char* value, std::size_t length) {
  if (std::memchr(value, kEscape, length) == nullptr) return length;
  std::size_t kept = 0;
  for (std::size_t i = 0; i < length; ++i) {
    if (value[i] == kEscape && ++i == length) break;
    value[kept++] = value[i];
  }
  return kept;
}

/// Most keys that differ do so in their first character.
bool SameKey(std::string_view a, std::string_view b) {
  return a.size() == b.size() && a.front() == b.front() && std::memcmp(a.data(), b.data(), a.size()) == 0;
}

}  // namespace

const std::string_view* FieldMap::Find(std::string_view key) const {
  if (key.empty()) return nullptr;
  auto at = fields_.begin();
  if (fields_.size() > kFew) {
    at = std::lower_bound(at, fields_.end(), key,
                          [](const Field& field, std::string_view wanted) { return field.key < wanted; });
    return at != fields_.end() && at->key == key ? &at->value : nullptr;
  }
  at = std::find_if(at, fields_.end(), [&](const Field& field) { return SameKey(field.key, key); });
  return at != fields_.end() ? &at->value : nullptr;
}

bool FieldMap::AddToken(char* token, std::size_t length) {
  const auto* equals = static_cast<const char*>(std::memchr(token, '=', length));
  if (equals == nullptr) {
    fields_.push_back({{token, length}, {}});
    return true;
  }
  const auto key_length = static_cast<std::size_t>(equals - token);
  char* value = token + key_length + 1;
  const std::size_t value_length = length - key_length - 1;
  if (key_length == 0 || value_length == 0) return false;
  fields_.push_back({{token, key_length}, {value, Unescape(value, value_length)}});
  return true;
}

bool FieldMap::MakeUnique() {
  if (fields_.size() > kFew) {
    std::sort(fields_.begin(), fields_.end(), [](const Field& a, const Field& b) { return a.key < b.key; });
    return std::adjacent_find(fields_.begin(), fields_.end(),
                              [](const Field& a, const Field& b) { return a.key == b.key; }) == fields_.end();
  }
  for (auto field = fields_.begin(); field != fields_.end(); ++field) {
    const auto same = [&](const Field& other) { return SameKey(other.key, field->key); };
    if (std::any_of(fields_.begin(), field, same)) return false;
  }
  return true;
}

bool SplitCommand(std::string& text, std::string_view* word, FieldMap* fields) {
  *word = {};
  fields->fields_.clear();
  char* const end = text.data() + text.size();
  for (char* token = text.data(); token < end; ++token) {
    const std::size_t length = TokenLength(token, end);
    if (length == 0) continue;  // runs of commas give no tokens
    if (word->empty()) {
      *word = {token, length};
    } else if (!fields->AddToken(token, length)) {
      return false;
    }
    token += length;
  }
  return fields->MakeUnique();
}

}  // namespace qxcm
