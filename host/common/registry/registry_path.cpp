// Names and paths of keys: which are good, and how a path is written as text.
#include <algorithm>
#include <iterator>

#include "common/registry/registry_tree.h"
#include "common/text/utf.h"

namespace host {
namespace {

bool IsRoot(const WideString& name) {
  return std::find(std::begin(kRegistryRoots), std::end(kRegistryRoots), name) != std::end(kRegistryRoots);
}

bool GoodKeyName(const WideString& name) {
  return !name.empty() && name.find(TEXT('\\')) == WideString::npos && GoodRegistryName(name);
}

}  // namespace

bool GoodRegistryName(WideView name) {
  return name.size() <= kLongestRegistryName && name.find(TEXT('\0')) == WideView::npos && IsWellFormed(name);
}

bool GoodRegistryPath(const RegistryPath& path) {
  return !path.empty() && path.size() <= 1 + kRegistryLevels && IsRoot(path[0]) &&
         std::all_of(path.begin(), path.end(), GoodKeyName);
}

std::string RegistryPathText(const RegistryPath& path) {
  std::string text;
  for (const WideString& name : path) {
    if (!text.empty()) text += '/';
    for (const char c : WideToUtf8(name)) text += c == '/' ? std::string("\\/") : std::string(1, c);
  }
  return text;
}

std::optional<RegistryPath> ParseRegistryPath(std::string_view text) {
  std::vector<std::string> names(1);
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '/') {
      names.emplace_back();
    } else if (text.substr(i, 2) == "\\/") {
      names.back() += text[++i];
    } else {
      names.back() += text[i];
    }
  }
  RegistryPath path;
  for (const std::string& name : names) path.push_back(Utf8ToWide(name));
  if (!GoodRegistryPath(path)) return std::nullopt;
  return path;
}

}  // namespace host
