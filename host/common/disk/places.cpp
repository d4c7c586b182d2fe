#include "common/disk/places.h"

#include <utility>

#include "common/disk/paths.h"
#include "disk/places.h"

namespace host {

DWORD Locate(WideView path, Place* place) {
  FilePath parsed;
  const DWORD error = ParsePath(path, WildCards::kRefused, &parsed);
  if (error != ERROR_SUCCESS) return error;
  if (parsed.names.empty()) return OpenFolder({}, &place->entry);
  place->ends_with_separator = parsed.ends_with_separator;
  return FindPlace(parsed.names, place);
}

DWORD LocateExisting(WideView path, Place* place) {
  const DWORD error = Locate(path, place);
  if (error != ERROR_SUCCESS) return error;
  if (!place->entry.exists()) return ERROR_FILE_NOT_FOUND;
  const bool file_named_as_folder = place->ends_with_separator && !place->entry.facts.folder();
  return file_named_as_folder ? ERROR_INVALID_NAME : ERROR_SUCCESS;
}

DWORD LocatePattern(WideView pattern, DiskEntry* folder, WideString* name) {
  FilePath parsed;
  DWORD error = ParsePath(pattern, WildCards::kInLastName, &parsed);
  if (error != ERROR_SUCCESS) return error;
  const bool no_name = parsed.names.empty() || parsed.ends_with_separator;
  if (!no_name) {
    *name = std::move(parsed.names.back());
    parsed.names.pop_back();
  }
  error = OpenFolder(parsed.names, folder);
  return error == ERROR_SUCCESS && no_name ? ERROR_FILE_NOT_FOUND : error;
}

}  // namespace host
