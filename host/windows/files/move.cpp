// MoveFileW.
#include "common/calls/last_error.h"
#include "common/files/file_space.h"
#include "common/files/files.h"
#include "common/files/paths.h"
#include "windows/disk/places.h"
#include "windows/files/open_paths.h"

namespace host {
namespace {

bool IsBelow(const WideString& path, const WideString& folder) {
  return path == folder || path.rfind(folder + TEXT('\\'), 0) == 0;
}

// What the system itself refuses on Windows, Wine does not always: a folder into itself, one with open files.
DWORD CheckMove(const Place& from, const Place& to) {
  const DiskEntry& entry = from.entry;
  if (from.is_root()) return ERROR_ACCESS_DENIED;
  if (entry.facts.folder() && HoldsOpenFiles(entry.path)) return ERROR_ACCESS_DENIED;
  if (to.entry.exists() && to.entry.path != entry.path) return ERROR_ALREADY_EXISTS;
  if (!entry.facts.folder() && to.ends_with_separator) return ERROR_INVALID_NAME;
  if (to.folder.exists() && IsBelow(to.folder.path, entry.path)) return ERROR_SHARING_VIOLATION;
  return ChangeRefused(to);
}

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

DWORD MoveByPath(LPCWSTR source, LPCWSTR destination) {
  const auto lock = LockNames();
  Place from, to;
  DWORD error = LocateExisting(PathText(source), &from);
  if (error == ERROR_SUCCESS) error = Locate(PathText(destination), &to);
  if (error == ERROR_SUCCESS) error = CheckMove(from, to);
  if (error != ERROR_SUCCESS) return error;
  const bool changes_case = to.entry.exists() && to.new_path != from.entry.path;
  return changes_case ? ChangeLetterCase(from, to) : Rename(from.entry.path, to.new_path);
}

}  // namespace

BOOL MoveFileW(LPCWSTR source, LPCWSTR destination) {
  const LastErrorBefore before;
  return before.End(MoveByPath(source, destination), TRUE, FALSE);
}

}  // namespace host
