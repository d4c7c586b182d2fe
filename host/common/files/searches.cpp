// FindFirstFileW, FindNextFileW and FindClose.
#include <memory>
#include <mutex>
#include <utility>

#include "common/calls/errors.h"
#include "common/calls/last_error.h"
#include "common/disk/attributes.h"
#include "common/disk/found_names.h"
#include "common/disk/paths.h"
#include "common/files/file_space.h"
#include "common/files/files.h"
#include "common/kernel/handles.h"
#include "common/text/utf.h"
#include "disk/places.h"

namespace host {
namespace {

void FillIn(const DiskEntry& entry, WIN32_FIND_DATAW* found) {
  *found = {};
  found->dwFileAttributes = AttributesOf(entry);
  const FileTimes times = TimesOf(entry);
  found->ftCreationTime = times.made;
  found->ftLastAccessTime = times.accessed;
  found->ftLastWriteTime = times.written;
  const std::uint64_t size = entry.facts.folder() ? 0 : entry.facts.size;
  found->nFileSizeHigh = static_cast<DWORD>(size >> 32);
  found->nFileSizeLow = static_cast<DWORD>(size & 0xFFFFFFFF);
  NameOf(entry).copy(found->cFileName, MAX_PATH - 1);
}

/// One search; its calls may come from several threads.
class FileSearch final : public KernelObject {
 public:
  FileSearch(std::string name, std::unique_ptr<FoundNames> names) : name_(std::move(name)), names_(std::move(names)) {}

  const std::string& name() const { return name_; }

  /// Tells the next one that is still there; false when there is none.
  bool Next(WIN32_FIND_DATAW* found) {
    const std::lock_guard<std::mutex> lock(mutex_);
    for (;;) {
      DiskEntry entry;
      if (!names_->Next(&entry)) return false;
      if (!entry.exists()) continue;
      FillIn(entry, found);
      return true;
    }
  }

 private:
  const std::string name_;
  std::mutex mutex_;
  const std::unique_ptr<FoundNames> names_;  // guarded by mutex_
};

DWORD StartSearch(WideView pattern, std::shared_ptr<FileSearch>* search) {
  const auto lock = LockNames();
  DiskEntry folder;
  WideString name;
  std::unique_ptr<FoundNames> names;
  DWORD error = LocatePattern(pattern, &folder, &name);
  if (error == ERROR_SUCCESS) error = FindNames(std::move(folder), name, &names);
  if (error == ERROR_SUCCESS) *search = std::make_shared<FileSearch>(WideToUtf8(pattern), std::move(names));
  return error;
}

}  // namespace

HANDLE FindFirstFileW(LPCWSTR pattern, LPWIN32_FIND_DATAW found) {
  if (found == nullptr) return Fail(ERROR_INVALID_PARAMETER, INVALID_HANDLE_VALUE);
  const LastErrorBefore before;
  std::shared_ptr<FileSearch> search;
  DWORD error = StartSearch(PathText(pattern), &search);
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
