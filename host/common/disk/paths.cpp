#include "common/disk/paths.h"

#include "common/disk/names.h"

namespace host {
namespace {

constexpr WideView kSeparators = TEXT("\\/");

bool IsSeparator(WCHAR unit) { return kSeparators.find(unit) != WideView::npos; }

// Takes the next name off the path; what separates it from the one behind goes too.
WideView TakeName(WideView* path) {
  const WideView name = path->substr(0, path->find_first_of(kSeparators));
  path->remove_prefix(name.size());
  const std::size_t next = path->find_first_not_of(kSeparators);
  path->remove_prefix(next == WideView::npos ? path->size() : next);
  return name;
}

DWORD AddName(WideView name, bool wild_cards_allowed, FilePath* parsed) {
  if (name == TEXT(".")) return ERROR_SUCCESS;
  if (!HasGoodUnits(name, wild_cards_allowed)) return ERROR_INVALID_NAME;
  const WideView trimmed = HasWildCards(name) ? name : TrimName(name);
  if (trimmed.empty()) return ERROR_INVALID_NAME;
  if (trimmed.size() > kLongestName) return ERROR_FILENAME_EXCED_RANGE;
  parsed->names.emplace_back(trimmed);
  return ERROR_SUCCESS;
}

}  // namespace

DWORD ParsePath(WideView path, WildCards wild_cards, FilePath* parsed) {
  if (path.empty()) return ERROR_PATH_NOT_FOUND;
  if (path.size() >= MAX_PATH) return ERROR_FILENAME_EXCED_RANGE;
  if (path.size() > 1 && IsSeparator(path[0]) && IsSeparator(path[1])) return ERROR_BAD_NETPATH;
  parsed->ends_with_separator = IsSeparator(path.back());
  if (IsSeparator(path.front())) path.remove_prefix(1);
  while (!path.empty()) {
    const WideView name = TakeName(&path);
    const bool last = path.empty() && !parsed->ends_with_separator;
    const DWORD error = AddName(name, last && wild_cards == WildCards::kInLastName, parsed);
    if (error != ERROR_SUCCESS) return error;
  }
  return ERROR_SUCCESS;
}

WideView PathText(LPCWSTR path) { return path == nullptr ? WideView() : WideView(path); }

bool HasWildCards(WideView name) { return name.find_first_of(TEXT("*?")) != WideView::npos; }

}  // namespace host
