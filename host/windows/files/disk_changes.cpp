#include "common/files/disk_changes.h"

#include "windows/disk/attributes.h"
#include "windows/disk/places.h"

namespace host {

DWORD MakeFolderAt(const Place& place) {
  if (!::CreateDirectoryW(place.new_path.c_str(), nullptr)) return SystemError();
  const SystemHandle made = OpenForFacts(place.new_path);
  if (made.valid()) MarkMade(made.get());
  return ERROR_SUCCESS;
}

DWORD RemoveFolderAt(const Place& place) {
  const DWORD error = ChangeRefused(place);
  if (error != ERROR_SUCCESS) return error;
  return ::RemoveDirectoryW(place.entry.path.c_str()) ? ERROR_SUCCESS : SystemError();
}

DWORD RemoveFileAt(const Place& place) {
  return ::DeleteFileW(place.entry.path.c_str()) ? ERROR_SUCCESS : SystemError();
}

}  // namespace host
