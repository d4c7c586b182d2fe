// Calls on one path: attributes, making and removing.
#include "common/calls/last_error.h"
#include "common/files/file_space.h"
#include "common/files/files.h"
#include "common/files/paths.h"
#include "windows/disk/attributes.h"
#include "windows/disk/places.h"

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
  if (!::CreateDirectoryW(place.new_path.c_str(), nullptr)) return SystemError();
  const SystemHandle made = OpenForFacts(place.new_path);
  if (made.valid()) MarkMade(made.get());
  return ERROR_SUCCESS;
}

DWORD RemoveFolder(LPCWSTR path) {
  const auto lock = LockNames();
  Place place;
  DWORD error = Locate(PathText(path), &place);
  if (error != ERROR_SUCCESS) return error;
  if (!place.entry.exists()) return ERROR_FILE_NOT_FOUND;
  if (!place.entry.facts.folder()) return ERROR_DIRECTORY;
  error = ChangeRefused(place);
  if (error != ERROR_SUCCESS) return error;
  return ::RemoveDirectoryW(place.entry.path.c_str()) ? ERROR_SUCCESS : SystemError();
}

DWORD RemoveFile(LPCWSTR path) {
  const auto lock = LockNames();
  Place place;
  const DWORD error = LocateExisting(PathText(path), &place);
  if (error != ERROR_SUCCESS) return error;
  if (place.entry.facts.folder()) return ERROR_ACCESS_DENIED;
  if (!::DeleteFileW(place.entry.path.c_str())) return SystemError();
  GiveFileSpace(place.entry.facts.size);
  return ERROR_SUCCESS;
}

}  // namespace

DWORD GetFileAttributesW(LPCWSTR path) {
  const LastErrorBefore before;
  const auto lock = LockNames();
  Place place;
  const DWORD error = LocateExisting(PathText(path), &place);
  return before.End(error, InstrumentAttributes(place.entry.facts), INVALID_FILE_ATTRIBUTES);
}

BOOL CreateDirectoryW(LPCWSTR path, LPSECURITY_ATTRIBUTES) {
  const LastErrorBefore before;
  return before.End(MakeFolder(path), TRUE, FALSE);
}

BOOL RemoveDirectoryW(LPCWSTR path) {
  const LastErrorBefore before;
  return before.End(RemoveFolder(path), TRUE, FALSE);
}

BOOL DeleteFileW(LPCWSTR path) {
  const LastErrorBefore before;
  return before.End(RemoveFile(path), TRUE, FALSE);
}

}  // namespace host
