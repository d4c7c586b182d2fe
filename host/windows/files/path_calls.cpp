// Calls on one path: attributes, making and removing.
#include "common/calls/errors.h"
#include "common/files/file_space.h"
#include "common/files/files.h"
#include "common/files/paths.h"
#include "windows/disk/attributes.h"
#include "windows/disk/places.h"

namespace host {
namespace {

BOOL Done(DWORD error) { return error == ERROR_SUCCESS ? TRUE : Fail(error, FALSE); }

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
  const auto lock = LockNames();
  Place place;
  const DWORD error = LocateExisting(PathText(path), &place);
  return error == ERROR_SUCCESS ? InstrumentAttributes(place.entry.facts) : Fail(error, INVALID_FILE_ATTRIBUTES);
}

BOOL CreateDirectoryW(LPCWSTR path, LPSECURITY_ATTRIBUTES) { return Done(MakeFolder(path)); }
BOOL RemoveDirectoryW(LPCWSTR path) { return Done(RemoveFolder(path)); }
BOOL DeleteFileW(LPCWSTR path) { return Done(RemoveFile(path)); }

}  // namespace host
