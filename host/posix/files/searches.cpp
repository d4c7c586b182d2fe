// FindFirstFileW, FindNextFileW and FindClose.
#include <algorithm>
#include <cstring>
#include <mutex>
#include <utility>
#include <vector>

#include "common/calls/errors.h"
#include "common/files/file_space.h"
#include "common/files/files.h"
#include "common/files/names.h"
#include "common/files/paths.h"
#include "common/files/wild_cards.h"
#include "common/kernel/handles.h"
#include "common/text/utf.h"
#include "posix/disk/attributes.h"
#include "posix/disk/host_names.h"
#include "posix/disk/places.h"

namespace host {
namespace {

// A name that a search has found.
struct FoundName {
  std::u16string folded;  // what it is sorted by
  std::string host_name;
};

bool operator<(const FoundName& a, const FoundName& b) {
  return std::tie(a.folded, a.host_name) < std::tie(b.folded, b.host_name);
}

void FillIn(const DiskEntry& entry, WIN32_FIND_DATAW* found) {
  *found = {};
  found->dwFileAttributes = ReadAttributes(entry);
  found->ftCreationTime = ToFileTime(entry.facts.made);
  found->ftLastAccessTime = ToFileTime(entry.facts.accessed);
  found->ftLastWriteTime = ToFileTime(entry.facts.written);
  const std::uint64_t size = entry.facts.folder() ? 0 : entry.facts.size;
  found->nFileSizeHigh = static_cast<DWORD>(size >> 32);
  found->nFileSizeLow = static_cast<DWORD>(size & 0xFFFFFFFF);
  const std::u16string name = *FromHostName(entry.host_name);
  std::memcpy(found->cFileName, name.c_str(), (name.size() + 1) * sizeof(char16_t));
}

/// One search; its calls may come from several threads.
class FileSearch final : public KernelObject {
 public:
  FileSearch(std::string name, DiskEntry folder, std::vector<FoundName> names)
      : name_(std::move(name)), folder_(std::move(folder)), names_(std::move(names)) {}

  const std::string& name() const { return name_; }

  /// Tells the next one that is still there; false when there is none.
  bool Next(WIN32_FIND_DATAW* found) {
    const std::lock_guard<std::mutex> lock(mutex_);
    while (next_ < names_.size()) {
      DiskEntry entry;
      const DWORD error = OpenEntry(folder_.descriptor.get(), std::move(names_[next_++].host_name), &entry);
      if (error != ERROR_SUCCESS || !entry.exists()) continue;
      FillIn(entry, found);
      return true;
    }
    return false;
  }

 private:
  const std::string name_;
  const DiskEntry folder_;
  std::mutex mutex_;
  std::vector<FoundName> names_;  // guarded by mutex_
  std::size_t next_ = 0;          // guarded by mutex_
};

bool IsFileNow(const DiskEntry& folder, const std::string& host_name) {
  DiskEntry entry;
  return OpenEntry(folder.descriptor.get(), host_name, &entry) == ERROR_SUCCESS && entry.exists();
}

// Sorts, and of the names that differ in letter case alone keeps the first that is a file or folder.
void Arrange(const DiskEntry& folder, std::vector<FoundName>* names) {
  std::sort(names->begin(), names->end());
  std::vector<FoundName> kept;
  for (FoundName& name : *names) {
    const bool taken = !kept.empty() && kept.back().folded == name.folded;
    if (taken && IsFileNow(folder, kept.back().host_name)) continue;
    if (taken) kept.pop_back();
    kept.push_back(std::move(name));
  }
  *names = std::move(kept);
}

DWORD FindMatching(const DiskEntry& folder, std::u16string_view name, std::vector<FoundName>* names) {
  const NamePattern pattern(name);
  const DWORD error = ScanFolder(folder.descriptor.get(), [&](std::string_view host_name) {
    const auto own_name = FromHostName(host_name);
    if (!own_name) return;
    std::u16string folded = FoldName(*own_name);
    if (pattern.Matches(folded)) names->push_back({std::move(folded), std::string(host_name)});
  });
  Arrange(folder, names);
  return error;
}

DWORD FindOne(const DiskEntry& folder, std::u16string_view name, std::vector<FoundName>* names) {
  DiskEntry entry;
  const DWORD error = FindEntry(folder, name, &entry);
  if (error == ERROR_SUCCESS && entry.exists()) names->push_back({{}, entry.host_name});
  return error;
}

DWORD StartSearch(LPCWSTR pattern, std::shared_ptr<FileSearch>* search) {
  const auto lock = LockNames();
  DiskEntry folder;
  std::u16string name;
  std::vector<FoundName> names;
  DWORD error = LocatePattern(PathText(pattern), &folder, &name);
  if (error != ERROR_SUCCESS) return error;
  error = HasWildCards(name) ? FindMatching(folder, name, &names) : FindOne(folder, name, &names);
  if (error != ERROR_SUCCESS) return error;
  *search = std::make_shared<FileSearch>(WideToUtf8(PathText(pattern)), std::move(folder), std::move(names));
  return ERROR_SUCCESS;
}

}  // namespace

HANDLE FindFirstFileW(LPCWSTR pattern, LPWIN32_FIND_DATAW found) {
  if (found == nullptr) return Fail(ERROR_INVALID_PARAMETER, INVALID_HANDLE_VALUE);
  std::shared_ptr<FileSearch> search;
  const DWORD error = StartSearch(pattern, &search);
  if (error != ERROR_SUCCESS) return Fail(error, INVALID_HANDLE_VALUE);
  if (!search->Next(found)) return Fail(ERROR_FILE_NOT_FOUND, INVALID_HANDLE_VALUE);
  const HANDLE handle = InsertHandle(std::move(search));
  return handle == nullptr ? INVALID_HANDLE_VALUE : handle;
}

BOOL FindNextFileW(HANDLE search, LPWIN32_FIND_DATAW found) {
  const auto object = FindHandle<FileSearch>(search);
  if (object == nullptr) return FALSE;
  if (found == nullptr) return Fail(ERROR_INVALID_PARAMETER, FALSE);
  return object->Next(found) ? TRUE : Fail(ERROR_NO_MORE_FILES, FALSE);
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
