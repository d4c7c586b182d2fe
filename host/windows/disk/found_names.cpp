#include "common/disk/found_names.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "common/disk/names.h"
#include "common/disk/paths.h"
#include "common/disk/wild_cards.h"
#include "windows/disk/entries.h"

namespace host {
namespace {

struct FoundName {
  WideString folded;  // what it is sorted by
  WideString path;    // on this machine
};

bool operator<(const FoundName& a, const FoundName& b) { return a.folded < b.folded; }

class FoundPaths final : public FoundNames {
 public:
  explicit FoundPaths(std::vector<FoundName> names) : names_(std::move(names)) {}

  bool Next(DiskEntry* entry) override {
    if (next_ == names_.size()) return false;
    FindEntry(names_[next_++].path, entry);
    return true;
  }

 private:
  const std::vector<FoundName> names_;
  std::size_t next_ = 0;
};

// The system's own patterns would do but for Wine, where "?" and "*." mean less than on Windows.
DWORD FindMatching(const DiskEntry& folder, WideView name, std::vector<FoundName>* names) {
  const NamePattern pattern(name);
  WIN32_FIND_DATAW each;
  const HANDLE search = ::FindFirstFileExW((folder.path + TEXT("\\*")).c_str(), FindExInfoBasic, &each,
                                           FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH);
  if (search == INVALID_HANDLE_VALUE) return SystemError();
  do {
    if (!IsPlatformName(each.cFileName)) continue;  // "." and ".." among others
    WideString folded = FoldName(each.cFileName);
    if (pattern.Matches(folded)) names->push_back({std::move(folded), folder.path + TEXT('\\') + each.cFileName});
  } while (::FindNextFileW(search, &each));
  const DWORD error = ::GetLastError();
  ::FindClose(search);
  std::sort(names->begin(), names->end());
  return error == ERROR_NO_MORE_FILES ? ERROR_SUCCESS : error;
}

}  // namespace

DWORD FindNames(DiskEntry folder, WideView name, std::unique_ptr<FoundNames>* names) {
  std::vector<FoundName> found;
  DWORD error = ERROR_SUCCESS;
  if (HasWildCards(name)) {
    error = FindMatching(folder, name, &found);
  } else {
    found.push_back({{}, folder.path + TEXT('\\') + WideString(name)});
  }
  if (error == ERROR_SUCCESS) *names = std::make_unique<FoundPaths>(std::move(found));
  return error;
}

WideString NameOf(const DiskEntry& entry) { return entry.path.substr(entry.path.rfind(TEXT('\\')) + 1); }

}  // namespace host
