#include "common/files/open_file.h"

#include "common/disk/attributes.h"
#include "disk/places.h"

namespace host {

DWORD CheckNew(const Place& place) {
  if (place.entry.exists()) return ERROR_FILE_EXISTS;
  return place.ends_with_separator ? ERROR_INVALID_NAME : ChangeRefused(place);
}

// Read-only files, too: this machine's administrator may write them.
DWORD CheckExisting(const Place& place, DWORD access) {
  if (!place.entry.exists()) return ERROR_FILE_NOT_FOUND;
  if (place.entry.facts.folder()) return ERROR_ACCESS_DENIED;
  if (place.ends_with_separator) return ERROR_INVALID_NAME;
  if ((access & GENERIC_WRITE) == 0) return ERROR_SUCCESS;
  return (AttributesOf(place.entry) & FILE_ATTRIBUTE_READONLY) != 0 ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
}

}  // namespace host
