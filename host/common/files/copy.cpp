#include "common/files/copy.h"

#include "common/calls/last_error.h"
#include "common/disk/attributes.h"
#include "common/disk/paths.h"
#include "common/files/files.h"
#include "common/files/open_file.h"
#include "disk/places.h"

namespace host {
namespace {

// What is overwritten must be plain.
bool MayBeOverwritten(const DiskEntry& entry) {
  constexpr DWORD kNotPlain = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
  return !entry.facts.folder() && (AttributesOf(entry) & kNotPlain) == 0;
}

}  // namespace

DWORD CheckCopyTarget(const Place& to, bool overwrite) {
  if (!to.entry.exists()) return CheckNew(to);
  if (!overwrite) return ERROR_FILE_EXISTS;
  if (!MayBeOverwritten(to.entry)) return ERROR_ACCESS_DENIED;
  return to.ends_with_separator ? ERROR_INVALID_NAME : ERROR_SUCCESS;
}

BOOL CopyFileW(LPCWSTR source, LPCWSTR destination, BOOL fail_if_exists) {
  const LastErrorBefore before;
  return before.End(CopyByPath(PathText(source), PathText(destination), fail_if_exists == FALSE), TRUE, FALSE);
}

}  // namespace host
