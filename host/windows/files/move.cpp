// Moving files and folders: common/files/disk_changes.h. What the system itself refuses on Windows, Wine does not
// always: a folder into itself, one with open files.
#include "common/files/disk_changes.h"
#include "windows/disk/places.h"
#include "windows/files/open_paths.h"

namespace host {
namespace {

DWORD Rename(const WideString& from, const WideString& to) {
  return ::MoveFileExW(from.c_str(), to.c_str(), 0) ? ERROR_SUCCESS : SystemError();
}

// In two steps, since Wine takes a new letter case for no change.
DWORD ChangeLetterCase(const Place& from, const Place& to) {
  const WideString between = from.folder.path + TEXT("\\~renamed.") + std::to_wstring(::GetCurrentProcessId());
  DWORD error = Rename(from.entry.path, between);
  if (error != ERROR_SUCCESS) return error;
  error = Rename(between, to.new_path);
  if (error != ERROR_SUCCESS) Rename(between, from.entry.path);
  return error;
}

}  // namespace

DWORD MoveTo(const Place& from, const Place& to) {
  const bool changes_case = to.entry.exists() && to.new_path != from.entry.path;
  return changes_case ? ChangeLetterCase(from, to) : Rename(from.entry.path, to.new_path);
}

DWORD OpenFilesRefuse(const Place& from) {
  return from.entry.facts.folder() && HoldsOpenFiles(from.entry.path) ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
}

bool SameEntry(const Place& one, const Place& other) { return one.entry.path == other.entry.path; }

bool IsBelow(const Place& place, const DiskEntry& folder) {
  const WideString& path = place.folder.path;
  return place.folder.exists() && (path == folder.path || path.rfind(folder.path + TEXT('\\'), 0) == 0);
}

}  // namespace host
