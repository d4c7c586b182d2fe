// FindFirstFileW, FindNextFileW and FindClose.
#include <algorithm>
#include <mutex>
#include <utility>
#include <vector>

#include "common/calls/errors.h"
#include "common/calls/last_error.h"
#include "common/files/file_space.h"
#include "common/files/files.h"
#include "common/files/names.h"
#include "common/files/paths.h"
#include "common/files/wild_cards.h"
#include "common/kernel/handles.h"
#include "windows/disk/attributes.h"
#include "windows/disk/places.h"

namespace host {
namespace {

// A name that a search has found.
struct FoundName {
  WideString folded;  // what it is sorted by
  WideString path;    // on this machine
};

bool operator<(const FoundName& a, const FoundName& b) { return a.folded < b.folded; }

void FillIn(const DiskEntry& entry, WIN32_FIND_DATAW* found) {
  *found = {};
  found->dwFileAttributes = InstrumentAttributes(entry.facts);
  found->ftCreationTime = entry.facts.made;
  found->ftLastAccessTime = entry.facts.accessed;
  found->ftLastWriteTime = entry.facts.written;
  const std::uint64_t size = entry.facts.folder() ? 0 : entry.facts.size;
  found->nFileSizeHigh = static_cast<DWORD>(size >> 32);
  found->nFileSizeLow = static_cast<DWORD>(size & 0xFFFFFFFF);
  const WideString name = entry.path.substr(entry.path.rfind(TEXT('\\')) + 1);
  name.copy(found->cFileName, MAX_PATH - 1);
}

/// One search; its calls may come from several threads.
class FileSearch final : public KernelObject {
 public:
  FileSearch(std::string name, std::vector<FoundName> names) : name_(std::move(name)), names_(std::move(names)) {}

  const std::string& name() const { return name_; }

  /// Tells the next one that is still there; false when there is none.
  bool Next(WIN32_FIND_DATAW* found) {
    const std::lock_guard<std::mutex> lock(mutex_);
    while (next_ < names_.size()) {
      DiskEntry entry;
      if (FindEntry(names_[next_++].path, &entry) != ERROR_SUCCESS || !entry.exists()) continue;
      FillIn(entry, found);
      return true;
    }
    return false;
  }

 private:
  const std::string name_;
  const std::vector<FoundName> names_;
  std::mutex mutex_;
  std::size_t next_ = 0;  // guarded by mutex_
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

DWORD StartSearch(LPCWSTR pattern, std::shared_ptr<FileSearch>* search) {
  const auto lock = LockNames();
  DiskEntry folder;
  WideString name;
  std::vector<FoundName> names;
  DWORD error = LocatePattern(PathText(pattern), &folder, &name);
  if (error == ERROR_SUCCESS && !HasWildCards(name)) names.push_back({{}, folder.path + TEXT('\\') + name});
  if (error == ERROR_SUCCESS && HasWildCards(name)) error = FindMatching(folder, name, &names);
  if (error == ERROR_SUCCESS) *search = std::make_shared<FileSearch>(WideToUtf8(PathText(pattern)), std::move(names));
  return error;
}

}  // namespace

HANDLE FindFirstFileW(LPCWSTR pattern, LPWIN32_FIND_DATAW found) {
  if (found == nullptr) return Fail(ERROR_INVALID_PARAMETER, INVALID_HANDLE_VALUE);
  const LastErrorBefore before;
  std::shared_ptr<FileSearch> search;
  DWORD error = StartSearch(pattern, &search);
  if (error == ERROR_SUCCESS && !search->Next(found)) error = ERROR_FILE_NOT_FOUND;
  if (error != ERROR_SUCCESS) return Fail(error, INVALID_HANDLE_VALUE);
  const HANDLE handle = InsertHandle(std::move(search));
  return handle == nullptr ? INVALID_HANDLE_VALUE : before.End(ERROR_SUCCESS, handle, handle);
}

BOOL FindNextFileW(HANDLE search, LPWIN32_FIND_DATAW found) {
  const auto object = FindHandle<FileSearch>(search);
  if (object == nullptr) return FALSE;
  if (found == nullptr) return Fail(ERROR_INVALID_PARAMETER, FALSE);
  const LastErrorBefore before;
  const DWORD error = object->Next(found) ? ERROR_SUCCESS : ERROR_NO_MORE_FILES;
  return before.End(error, TRUE, FALSE);
}

BOOL FindClose(HANDLE search) {
  if (FindHandle<FileSearch>(search) == nullptr) return FALSE;
  return CloseHandle(search);
}

std::string SearchName(HANDLE search) {
  const auto object = std::dynamic_pointer_cast<FileSearch>(FindObject(search));
  return object == nullptr ? std::string() : object->name();
}

}  // namespace host
