#include "common/files/copy.h"

#include <algorithm>

#include "common/files/file_space.h"
#include "windows/disk/places.h"

namespace host {
namespace {

struct Copy {
  Place from;
  Place to;

  std::uint64_t old_size() const { return to.entry.exists() ? to.entry.facts.size : 0; }
  const WideString& target() const { return to.entry.exists() ? to.entry.path : to.new_path; }
};

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

}  // namespace

DWORD CopyByPath(WideView source, WideView destination, bool overwrite) {
  const auto lock = LockNames();
  Copy copy;
  DWORD error = FindBoth(source, destination, &copy);
  if (error == ERROR_SUCCESS) error = CheckCopyTarget(copy.to, overwrite);
  return error == ERROR_SUCCESS ? CopyWithinRoom(copy) : error;
}

}  // namespace host
