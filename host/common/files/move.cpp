// MoveFileW.
#include "common/calls/last_error.h"
#include "common/disk/paths.h"
#include "common/files/disk_changes.h"
#include "common/files/file_space.h"
#include "common/files/files.h"
#include "disk/places.h"

namespace host {
namespace {

DWORD CheckMove(const Place& from, const Place& to) {
  if (from.is_root()) return ERROR_ACCESS_DENIED;
  DWORD error = OpenFilesRefuse(from);
  if (error != ERROR_SUCCESS) return error;
  if (to.entry.exists() && !SameEntry(from, to)) return ERROR_ALREADY_EXISTS;
  if (!from.entry.facts.folder() && to.ends_with_separator) return ERROR_INVALID_NAME;
  if (IsBelow(to, from.entry)) return ERROR_SHARING_VIOLATION;
  error = ChangeRefused(from);
  return error == ERROR_SUCCESS ? ChangeRefused(to) : error;
}

DWORD MoveByPath(WideView source, WideView destination) {
  const auto lock = LockNames();
  Place from, to;
  DWORD error = LocateExisting(source, &from);
  if (error == ERROR_SUCCESS) error = Locate(destination, &to);
  if (error == ERROR_SUCCESS) error = CheckMove(from, to);
  return error == ERROR_SUCCESS ? MoveTo(from, to) : error;
}

}  // namespace

BOOL MoveFileW(LPCWSTR source, LPCWSTR destination) {
  const LastErrorBefore before;
  return before.End(MoveByPath(PathText(source), PathText(destination)), TRUE, FALSE);
}

}  // namespace host
