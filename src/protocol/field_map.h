// The fields of one command, and the splitting of a command text into its word and fields.
#ifndef QXCM_PROTOCOL_FIELD_MAP_H
#define QXCM_PROTOCOL_FIELD_MAP_H

#include <string>
#include <string_view>
#include <vector>

namespace qxcm {

/// Unique keys (compared byte by byte) with their values. The texts live in the command text that was
/// split, so a map is good as long as that text is.
class FieldMap {
 public:
  /// The value of a key, or null when the key is absent. A key sent without "=" has an empty value.
  const std::string_view* Find(std::string_view key) const;
  bool Has(std::string_view key) const { return Find(key) != nullptr; }
  std::size_t size() const { return fields_.size(); }

 private:
  friend bool SplitCommand(std::string& text, std::string_view* word, FieldMap* fields);

  struct Field {
    std::string_view key;
    std::string_view value;
  };
  bool AddToken(char* token, std::size_t length);
  bool MakeUnique();

  std::vector<Field> fields_;  // as they came while they are few, else in key order
};

/// Splits a command text at its commas into the command word and its fields. A comma behind an odd number of
/// backslashes does not split; values lose their escaping backslashes, in place, so `text` changes.
/// `word` is empty when the text holds none. False when a field is malformed (an empty key, "KEY=" with nothing behind,
/// a key given twice): `word` is right all the same, `fields` is not to be used.
bool SplitCommand(std::string& text, std::string_view* word, FieldMap* fields);

}  // namespace qxcm

#endif
