#include "windows/disk/places.h"

#include <vector>

namespace host {
namespace {

using Names = std::vector<WideString>;

WideString Below(WideString path, Names::const_iterator name, Names::const_iterator end) {
  for (; name != end; ++name) path += TEXT('\\') + *name;
  return path;
}

DWORD OpenBelow(const RootFolder& root, Names::const_iterator name, Names::const_iterator end, DiskEntry* folder) {
  const DWORD error = FindFolder(Below(root.path, name, end), folder);
  if (error == ERROR_SHARING_VIOLATION) return ERROR_PATH_NOT_FOUND;  // a file that is open
  if (error != ERROR_SUCCESS) return error;
  return folder->exists() && folder->facts.folder() ? ERROR_SUCCESS : ERROR_PATH_NOT_FOUND;
}

}  // namespace

DWORD FindPlace(const Names& names, Place* place) {
  place->root = FileRoot();
  if (place->root == nullptr) return ERROR_PATH_NOT_FOUND;
  const DWORD error = OpenBelow(*place->root, names.begin(), names.end() - 1, &place->folder);
  if (error != ERROR_SUCCESS) return error;
  place->new_path = Below(place->folder.path, names.end() - 1, names.end());
  return FindEntry(place->new_path, &place->entry);
}

DWORD OpenFolder(const Names& names, DiskEntry* folder) {
  const auto root = FileRoot();
  return root == nullptr ? ERROR_PATH_NOT_FOUND : OpenBelow(*root, names.begin(), names.end(), folder);
}

DWORD ChangeRefused(const Place& place) {
  return place.is_root() || place.entry.taken ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
}

}  // namespace host
