#include "windows/disk/places.h"

#include <vector>

#include "common/files/paths.h"

namespace host {
namespace {

using Names = std::vector<WideString>;

WideString Below(WideString path, Names::const_iterator name, Names::const_iterator end) {
  for (; name != end; ++name) path += TEXT('\\') + *name;
  return path;
}

DWORD OpenFolder(const RootFolder& root, const Names& names, std::size_t depth, DiskEntry* folder) {
  const DWORD error = FindFolder(Below(root.path, names.begin(), names.begin() + static_cast<int>(depth)), folder);
  if (error == ERROR_SHARING_VIOLATION) return ERROR_PATH_NOT_FOUND;  // a file that is open
  if (error != ERROR_SUCCESS) return error;
  return folder->exists() && folder->facts.folder() ? ERROR_SUCCESS : ERROR_PATH_NOT_FOUND;
}

}  // namespace

DWORD Locate(WideView path, Place* place) {
  FilePath parsed;
  DWORD error = ParsePath(path, WildCards::kRefused, &parsed);
  if (error != ERROR_SUCCESS) return error;
  place->root = FileRoot();
  if (place->root == nullptr) return ERROR_PATH_NOT_FOUND;
  if (parsed.names.empty()) return OpenFolder(*place->root, parsed.names, 0, &place->entry);
  place->ends_with_separator = parsed.ends_with_separator;
  error = OpenFolder(*place->root, parsed.names, parsed.names.size() - 1, &place->folder);
  if (error != ERROR_SUCCESS) return error;
  place->new_path = Below(place->folder.path, parsed.names.end() - 1, parsed.names.end());
  return FindEntry(place->new_path, &place->entry);
}

DWORD LocateExisting(WideView path, Place* place) {
  const DWORD error = Locate(path, place);
  if (error != ERROR_SUCCESS) return error;
  if (!place->entry.exists()) return ERROR_FILE_NOT_FOUND;
  return place->file_named_as_folder() ? ERROR_INVALID_NAME : ERROR_SUCCESS;
}

DWORD LocatePattern(WideView pattern, DiskEntry* folder, WideString* name) {
  FilePath parsed;
  DWORD error = ParsePath(pattern, WildCards::kInLastName, &parsed);
  if (error != ERROR_SUCCESS) return error;
  const auto root = FileRoot();
  if (root == nullptr) return ERROR_PATH_NOT_FOUND;
  const bool no_name = parsed.names.empty() || parsed.ends_with_separator;
  error = OpenFolder(*root, parsed.names, parsed.names.size() - (no_name ? 0 : 1), folder);
  if (error == ERROR_SUCCESS && no_name) error = ERROR_FILE_NOT_FOUND;
  if (error == ERROR_SUCCESS) *name = parsed.names.back();
  return error;
}

DWORD ChangeRefused(const Place& place) {
  return place.is_root() || place.entry.taken ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
}

}  // namespace host
