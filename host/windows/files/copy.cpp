// CopyFileW.
#include <algorithm>

#include "common/calls/last_error.h"
#include "common/files/file_space.h"
#include "common/files/files.h"
#include "common/files/paths.h"
#include "windows/disk/attributes.h"
#include "windows/disk/places.h"

namespace host {
namespace {

struct Copy {
  Place from;
  Place to;
  bool overwrite = false;

  std::uint64_t old_size() const { return to.entry.exists() ? to.entry.facts.size : 0; }
  const WideString& target() const { return to.entry.exists() ? to.entry.path : to.new_path; }
};

// What CopyFileW overwrites must be plain: neither read-only nor hidden nor a system file.
bool MayBeOverwritten(const FileFacts& facts) {
  return (facts.attributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM)) == 0;
}

DWORD CheckTarget(const Copy& copy) {
  const Place& to = copy.to;
  if (!to.entry.exists()) return to.ends_with_separator ? ERROR_INVALID_NAME : ChangeRefused(to);
  if (!copy.overwrite) return ERROR_FILE_EXISTS;
  if (to.entry.facts.folder() || !MayBeOverwritten(to.entry.facts)) return ERROR_ACCESS_DENIED;
  return to.ends_with_separator ? ERROR_INVALID_NAME : ERROR_SUCCESS;
}

DWORD FindBoth(WideView source, WideView destination, Copy* copy) {
  DWORD error = LocateExisting(source, &copy->from);
  if (error == ERROR_SUCCESS && copy->from.entry.facts.folder()) error = ERROR_ACCESS_DENIED;
  if (error == ERROR_SUCCESS) error = Locate(destination, &copy->to);
  return error;
}

// As if the old data went first: what does not fit then is not there at all.
DWORD RemoveWithoutRoom(const Copy& copy) {
  if (copy.to.entry.exists() && ::DeleteFileW(copy.target().c_str())) GiveFileSpace(copy.old_size());
  return ERROR_DISK_FULL;
}

// What a copy that failed has left of its target: on Windows nothing.
std::uint64_t SizeLeft(const Copy& copy) {
  DiskEntry left;
  return FindEntry(copy.target(), &left) == ERROR_SUCCESS && left.exists() ? left.facts.size : 0;
}

// The system copies data, attributes and last-write time, and removes what it could not complete.
DWORD CopyWithinRoom(const Copy& copy) {
  const std::uint64_t size = copy.from.entry.facts.size;
  const std::uint64_t most = std::max(size, copy.old_size());
  if (!TakeFileSpace(most - copy.old_size())) return RemoveWithoutRoom(copy);
  const BOOL anew = !copy.to.entry.exists();
  const bool done = ::CopyFileW(copy.from.entry.path.c_str(), copy.target().c_str(), anew) != FALSE;
  const DWORD error = done ? ERROR_SUCCESS : SystemError();
  GiveFileSpace(most - std::min(most, done ? size : SizeLeft(copy)));
  return error;
}

DWORD CopyByPath(LPCWSTR source, LPCWSTR destination, bool overwrite) {
  const auto lock = LockNames();
  Copy copy;
  copy.overwrite = overwrite;
  DWORD error = FindBoth(PathText(source), PathText(destination), &copy);
  if (error == ERROR_SUCCESS) error = CheckTarget(copy);
  return error == ERROR_SUCCESS ? CopyWithinRoom(copy) : error;
}

}  // namespace

BOOL CopyFileW(LPCWSTR source, LPCWSTR destination, BOOL fail_if_exists) {
  const LastErrorBefore before;
  return before.End(CopyByPath(source, destination, fail_if_exists == FALSE), TRUE, FALSE);
}

}  // namespace host
