// Holds the command splitter to its promises on any text.
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "promise.h"
#include "protocol/field_map.h"
#include "targets.h"

namespace fuzz {

namespace {

using Fields = std::vector<std::pair<std::string, std::string>>;  // in the order sent

struct Expected {
  bool good = true;
  std::string word;
  Fields fields;
};

/// A comma splits unless the backslashes directly before it are odd in number.
bool Splits(const std::string& text, std::size_t at) {
  if (text[at] != ',') return false;
  const std::size_t before = text.find_last_not_of('\\', at - 1);
  const std::size_t backslashes = at == 0 ? 0 : before == std::string::npos ? at : at - 1 - before;
  return backslashes % 2 == 0;
}

std::vector<std::string> Tokens(const std::string& text) {
  std::vector<std::string> tokens(1);
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (!Splits(text, at)) {
      tokens.back().push_back(text[at]);
    } else if (!tokens.back().empty()) {
      tokens.emplace_back();
    }
  }
  if (tokens.back().empty()) tokens.pop_back();
  return tokens;
}

std::string Unescaped(const std::string& value) {
  std::string plain;
  for (std::size_t at = 0; at < value.size(); ++at) {
    if (value[at] == '\\' && ++at == value.size()) break;
    plain.push_back(value[at]);
  }
  return plain;
}

/// The rules in their plainest form.
Expected ByTheRules(const std::string& text) {
  Expected expected;
  std::map<std::string, std::string> seen;
  const std::vector<std::string> tokens = Tokens(text);
  if (!tokens.empty()) expected.word = tokens.front();
  for (std::size_t i = 1; i < tokens.size() && expected.good; ++i) {
    const std::size_t equals = tokens[i].find('=');
    const std::string key = tokens[i].substr(0, equals);
    const std::string value = equals == std::string::npos ? "" : tokens[i].substr(equals + 1);
    const bool malformed = equals != std::string::npos && (key.empty() || value.empty());
    expected.good = !malformed && seen.emplace(key, value).second;
    expected.fields.emplace_back(key, Unescaped(value));
  }
  return expected;
}

void ExpectFields(const qxcm::FieldMap& map, const Fields& fields) {
  Promise(map.size() == fields.size(), "as many fields as were sent");
  for (const auto& [key, value] : fields) {
    const std::string_view* found = map.Find(key);
    Promise(found != nullptr && map.Has(key), "every key that was sent is found");
    Promise(*found == value, "its value is the one sent, without the escaping backslashes");
  }
}

std::string Escaped(const std::string& value) {
  std::string text;
  for (const char letter : value) {
    if (letter == ',' || letter == '\\') text.push_back('\\');
    text.push_back(letter);
  }
  return text;
}

/// The command written anew; empty where a field cannot be: a key that ends in a backslash and has no value can only
/// stand last.
std::string Joined(const std::string& word, const Fields& fields) {
  std::string text = word;
  if (!word.empty() && word.back() == '\\') return "";
  for (const auto& [key, value] : fields) {
    if (value.empty() && key.back() == '\\') return "";
    text.append(",").append(key);
    if (!value.empty()) text.append("=").append(Escaped(value));
  }
  return text;
}

}  // namespace

void FuzzCommandSplitter(const std::uint8_t* data, std::size_t size) {
  const std::string sent(reinterpret_cast<const char*>(data), size);
  const Expected expected = ByTheRules(sent);

  std::string text = "ST_OLD,OLD=1,OLE=2";
  std::string_view word;
  qxcm::FieldMap map;
  Promise(qxcm::SplitCommand(text, &word, &map), "a plain command splits");

  text = sent;
  Promise(qxcm::SplitCommand(text, &word, &map) == expected.good, "malformed fields, and no others, are refused");
  Promise(word == expected.word, "the command word is the first token");
  if (!expected.good) return;
  ExpectFields(map, expected.fields);

  text = Joined(expected.word, expected.fields);
  if (text.empty()) return;
  Promise(qxcm::SplitCommand(text, &word, &map) && word == expected.word, "a command written anew splits again");
  ExpectFields(map, expected.fields);
}

}  // namespace fuzz
