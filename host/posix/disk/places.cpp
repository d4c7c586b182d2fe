#include "posix/disk/places.h"

#include <sys/statvfs.h>

#include <utility>

#include "posix/disk/host_errors.h"
#include "posix/disk/host_names.h"
#include "posix/disk/root_folder.h"

namespace host {
namespace {

using Names = std::vector<std::u16string>;

DWORD OpenRoot(DiskEntry* entry) {
  const auto root = FileRoot();
  if (root == nullptr) return ERROR_PATH_NOT_FOUND;
  const DWORD error = OpenEntry(root->descriptor.get(), ".", entry);
  return error == ERROR_SUCCESS && !entry->exists() ? ERROR_PATH_NOT_FOUND : error;
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

DWORD FindPlace(const Names& names, Place* place) {
  place->new_name = *ToHostName(names.back());
  const DWORD error = Walk(names.begin(), names.end() - 1, &place->folder, &place->folders);
  return error == ERROR_SUCCESS ? FindEntry(place->folder, names.back(), &place->entry) : error;
}

DWORD OpenFolder(const Names& names, DiskEntry* folder) {
  std::vector<FileId> passed;
  return Walk(names.begin(), names.end(), folder, &passed);
}

DWORD ChangeRefused(const Place& place) {
  if (place.is_root()) return ERROR_ACCESS_DENIED;
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
