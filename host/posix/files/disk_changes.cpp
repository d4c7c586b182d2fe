#include "common/files/disk_changes.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "posix/disk/attributes.h"
#include "posix/disk/host_errors.h"
#include "posix/disk/places.h"
#include "posix/files/shares.h"

namespace host {
namespace {

DWORD Unlink(const Place& place, int flags) {
  const DWORD error = ChangeRefused(place);
  if (error != ERROR_SUCCESS) return error;
  const bool gone = unlinkat(place.folder.descriptor.get(), place.entry.host_name.c_str(), flags) == 0;
  return gone ? ERROR_SUCCESS : HostError();
}

bool IsReadOnly(const DiskEntry& entry) { return (AttributesOf(entry) & FILE_ATTRIBUTE_READONLY) != 0; }

}  // namespace

DWORD MakeFolderAt(const Place& place) {
  if (mkdirat(place.folder.descriptor.get(), place.new_name.c_str(), 0777) != 0) return HostError();
  const timespec times[2] = {{0, UTIME_OMIT}, InstrumentTime()};
  utimensat(place.folder.descriptor.get(), place.new_name.c_str(), times, AT_SYMLINK_NOFOLLOW);
  return ERROR_SUCCESS;
}

DWORD RemoveFolderAt(const Place& place) {
  return IsReadOnly(place.entry) ? ERROR_ACCESS_DENIED : Unlink(place, AT_REMOVEDIR);
}

DWORD RemoveFileAt(const Place& place) {
  if (IsOpen(place.entry.facts.id)) return ERROR_SHARING_VIOLATION;
  return IsReadOnly(place.entry) ? ERROR_ACCESS_DENIED : Unlink(place, 0);
}

}  // namespace host
