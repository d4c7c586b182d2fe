#include "posix/disk/paths.h"

#include "posix/disk/names.h"

namespace host {
namespace {

constexpr std::u16string_view kSeparators = u"\\/";

bool IsSeparator(char16_t unit) { return kSeparators.find(unit) != std::u16string_view::npos; }

// Takes the next name off the path; what separates it from the one behind goes too.
std::u16string_view TakeName(std::u16string_view* path) {
  const std::u16string_view name = path->substr(0, path->find_first_of(kSeparators));
  path->remove_prefix(name.size());
  const std::size_t next = path->find_first_not_of(kSeparators);
  path->remove_prefix(next == std::u16string_view::npos ? path->size() : next);
  return name;
}

DWORD AddName(std::u16string_view name, bool wild_cards_allowed, FilePath* parsed) {
  if (name == u".") return ERROR_SUCCESS;
  if (!HasGoodUnits(name, wild_cards_allowed) || !ToHostName(name)) return ERROR_INVALID_NAME;
  const std::u16string_view trimmed = HasWildCards(name) ? name : TrimName(name);
  if (trimmed.empty()) return ERROR_INVALID_NAME;
  if (trimmed.size() > kLongestName) return ERROR_FILENAME_EXCED_RANGE;
  parsed->names.emplace_back(trimmed);
  return ERROR_SUCCESS;
}

}  // namespace

DWORD ParsePath(std::u16string_view path, WildCards wild_cards, FilePath* parsed) {
  if (path.empty()) return ERROR_PATH_NOT_FOUND;
  if (path.size() >= MAX_PATH) return ERROR_FILENAME_EXCED_RANGE;
  if (path.size() > 1 && IsSeparator(path[0]) && IsSeparator(path[1])) return ERROR_BAD_NETPATH;
  parsed->ends_with_separator = IsSeparator(path.back());
  if (IsSeparator(path.front())) path.remove_prefix(1);
  while (!path.empty()) {
    const std::u16string_view name = TakeName(&path);
    const bool last = path.empty() && !parsed->ends_with_separator;
    const DWORD error = AddName(name, last && wild_cards == WildCards::kInLastName, parsed);
    if (error != ERROR_SUCCESS) return error;
  }
  return ERROR_SUCCESS;
}

std::u16string_view PathText(LPCWSTR path) {
  return path == nullptr ? std::u16string_view() : std::u16string_view(path);
}

bool HasWildCards(std::u16string_view name) { return name.find_first_of(u"*?") != std::u16string_view::npos; }

}  // namespace host
