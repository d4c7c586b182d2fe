// Calls on one path: attributes, making and removing.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "common/calls/errors.h"
#include "common/files/file_space.h"
#include "common/files/files.h"
#include "common/files/paths.h"
#include "posix/disk/attributes.h"
#include "posix/disk/host_errors.h"
#include "posix/disk/places.h"
#include "posix/files/shares.h"

namespace host {
namespace {

DWORD MakeFolder(LPCWSTR path) {
  const auto lock = LockNames();
  Place place;
  DWORD error = Locate(PathText(path), &place);
  if (error != ERROR_SUCCESS) return error;
  if (place.entry.exists()) return ERROR_ALREADY_EXISTS;
  error = ChangeRefused(place);
  if (error != ERROR_SUCCESS) return error;
  if (mkdirat(place.folder.descriptor.get(), place.new_name.c_str(), 0777) != 0) return HostError();
  const timespec times[2] = {{0, UTIME_OMIT}, InstrumentTime()};
  utimensat(place.folder.descriptor.get(), place.new_name.c_str(), times, AT_SYMLINK_NOFOLLOW);
  return ERROR_SUCCESS;
}

DWORD Unlink(const Place& place, int flags) {
  const DWORD error = ChangeRefused(place);
  if (error != ERROR_SUCCESS) return error;
  const bool gone = unlinkat(place.folder.descriptor.get(), place.entry.host_name.c_str(), flags) == 0;
  return gone ? ERROR_SUCCESS : HostError();
}

bool IsReadOnly(const DiskEntry& entry) { return (ReadAttributes(entry) & FILE_ATTRIBUTE_READONLY) != 0; }

DWORD RemoveFolder(LPCWSTR path) {
  const auto lock = LockNames();
  Place place;
  const DWORD error = Locate(PathText(path), &place);
  if (error != ERROR_SUCCESS) return error;
  if (!place.entry.exists()) return ERROR_FILE_NOT_FOUND;
  if (!place.entry.facts.folder()) return ERROR_DIRECTORY;
  if (IsReadOnly(place.entry)) return ERROR_ACCESS_DENIED;
  return Unlink(place, AT_REMOVEDIR);
}

DWORD RemoveFile(LPCWSTR path) {
  const auto lock = LockNames();
  Place place;
  DWORD error = LocateExisting(PathText(path), &place);
  if (error != ERROR_SUCCESS) return error;
  if (place.entry.facts.folder()) return ERROR_ACCESS_DENIED;
  if (IsOpen(place.entry.facts.id)) return ERROR_SHARING_VIOLATION;
  if (IsReadOnly(place.entry)) return ERROR_ACCESS_DENIED;
  error = Unlink(place, 0);
  if (error == ERROR_SUCCESS) GiveFileSpace(place.entry.facts.size);
  return error;
}

}  // namespace

DWORD GetFileAttributesW(LPCWSTR path) {
  const auto lock = LockNames();
  Place place;
  const DWORD error = LocateExisting(PathText(path), &place);
  return error == ERROR_SUCCESS ? ReadAttributes(place.entry) : Fail(error, INVALID_FILE_ATTRIBUTES);
}

BOOL CreateDirectoryW(LPCWSTR path, LPSECURITY_ATTRIBUTES) { return Done(MakeFolder(path)); }
BOOL RemoveDirectoryW(LPCWSTR path) { return Done(RemoveFolder(path)); }
BOOL DeleteFileW(LPCWSTR path) { return Done(RemoveFile(path)); }

}  // namespace host
