// Moving files and folders: common/files/disk_changes.h.
#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>

#include "common/files/disk_changes.h"
#include "posix/disk/host_errors.h"
#include "posix/disk/places.h"
#include "posix/files/shares.h"

namespace host {

// Not every file system of this machine can refuse to overwrite; the look before has to do there.
DWORD MoveTo(const Place& from, const Place& to) {
  if (to.entry.exists() && to.new_name == from.entry.host_name) return ERROR_SUCCESS;
  const int old_folder = from.folder.descriptor.get(), new_folder = to.folder.descriptor.get();
  const char* old_name = from.entry.host_name.c_str();
  const char* new_name = to.new_name.c_str();
  if (renameat2(old_folder, old_name, new_folder, new_name, RENAME_NOREPLACE) == 0) return ERROR_SUCCESS;
  if (errno != EINVAL && errno != ENOSYS) return HostError();
  struct stat there {};
  if (fstatat(new_folder, new_name, &there, AT_SYMLINK_NOFOLLOW) == 0) return ERROR_ACCESS_DENIED;
  return renameat(old_folder, old_name, new_folder, new_name) == 0 ? ERROR_SUCCESS : HostError();
}

DWORD OpenFilesRefuse(const Place& from) {
  const FileFacts& facts = from.entry.facts;
  if (facts.file() && IsOpen(facts.id)) return ERROR_SHARING_VIOLATION;
  return facts.folder() && HoldsOpenFiles(facts.id) ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
}

bool SameEntry(const Place& one, const Place& other) {
  return one.folder.facts.id == other.folder.facts.id && one.entry.host_name == other.entry.host_name;
}

bool IsBelow(const Place& place, const DiskEntry& folder) {
  return std::find(place.folders.begin(), place.folders.end(), folder.facts.id) != place.folders.end();
}

}  // namespace host
