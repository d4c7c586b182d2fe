#include "posix/disk/places.h"

#include <sys/statvfs.h>

#include <utility>

#include "common/files/paths.h"
#include "posix/disk/file_root.h"
#include "posix/disk/host_errors.h"
#include "posix/disk/host_names.h"

namespace host {
namespace {

using Names = std::vector<std::u16string>;

DWORD OpenRoot(DiskEntry* root) {
  const auto descriptor = FileRoot();
  if (descriptor == nullptr) return ERROR_PATH_NOT_FOUND;
  const DWORD error = OpenEntry(descriptor->get(), ".", root);
  return error == ERROR_SUCCESS && !root->exists() ? ERROR_PATH_NOT_FOUND : error;
}

// Walks from the root through the folders of these names.
DWORD Walk(Names::const_iterator name, Names::const_iterator end, DiskEntry* folder, std::vector<FileId>* passed) {
  DWORD error = OpenRoot(folder);
  for (; error == ERROR_SUCCESS && name != end; ++name) {
    passed->push_back(folder->facts.id);
    DiskEntry next;
    error = FindEntry(*folder, *name, &next);
    const bool passable = next.exists() && next.facts.folder();
    if (error == ERROR_SUCCESS && !passable) error = ERROR_PATH_NOT_FOUND;
    *folder = std::move(next);
  }
  passed->push_back(folder->facts.id);
  return error == ERROR_FILE_NOT_FOUND ? ERROR_PATH_NOT_FOUND : error;
}

}  // namespace

DWORD Locate(std::u16string_view path, Place* place) {
  FilePath parsed;
  DWORD error = ParsePath(path, WildCards::kRefused, &parsed);
  if (error != ERROR_SUCCESS) return error;
  if (parsed.names.empty()) return OpenRoot(&place->entry);
  place->ends_with_separator = parsed.ends_with_separator;
  const std::u16string& last = parsed.names.back();
  place->new_name = *ToHostName(last);
  error = Walk(parsed.names.begin(), parsed.names.end() - 1, &place->folder, &place->folders);
  return error == ERROR_SUCCESS ? FindEntry(place->folder, last, &place->entry) : error;
}

DWORD LocateExisting(std::u16string_view path, Place* place) {
  const DWORD error = Locate(path, place);
  if (error != ERROR_SUCCESS) return error;
  if (!place->entry.exists()) return ERROR_FILE_NOT_FOUND;
  return place->file_named_as_folder() ? ERROR_INVALID_NAME : ERROR_SUCCESS;
}

DWORD LocatePattern(std::u16string_view pattern, DiskEntry* folder, std::u16string* name) {
  FilePath parsed;
  DWORD error = ParsePath(pattern, WildCards::kInLastName, &parsed);
  if (error != ERROR_SUCCESS) return error;
  const bool no_name = parsed.names.empty() || parsed.ends_with_separator;
  std::vector<FileId> passed;
  error = Walk(parsed.names.begin(), parsed.names.end() - (no_name ? 0 : 1), folder, &passed);
  if (error == ERROR_SUCCESS && no_name) error = ERROR_FILE_NOT_FOUND;
  if (error == ERROR_SUCCESS) *name = parsed.names.back();
  return error;
}

DWORD ChangeRefused(const Place& place) {
  if (place.root()) return ERROR_ACCESS_DENIED;
  const DWORD error = WriteProtected();
  if (error != ERROR_SUCCESS) return error;
  return place.folder.facts.owner_may_write() ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
}

DWORD WriteProtected() {
  DiskEntry root;
  const DWORD error = OpenRoot(&root);
  if (error != ERROR_SUCCESS) return error;
  struct statvfs volume {};
  if (fstatvfs(root.descriptor.get(), &volume) != 0) return HostError();
  const bool writable = root.facts.owner_may_write() && (volume.f_flag & ST_RDONLY) == 0;
  return writable ? ERROR_SUCCESS : ERROR_WRITE_PROTECT;
}

}  // namespace host
