// Calls on one path: attributes, making and removing.
#include "common/calls/last_error.h"
#include "common/disk/attributes.h"
#include "common/disk/paths.h"
#include "common/files/disk_changes.h"
#include "common/files/file_space.h"
#include "common/files/files.h"
#include "disk/places.h"

namespace host {
namespace {

DWORD ReadAttributes(LPCWSTR path, DWORD* attributes) {
  const auto lock = LockNames();
  Place place;
  const DWORD error = LocateExisting(PathText(path), &place);
  if (error == ERROR_SUCCESS) *attributes = AttributesOf(place.entry);
  return error;
}

DWORD MakeFolder(LPCWSTR path) {
  const auto lock = LockNames();
  Place place;
  DWORD error = Locate(PathText(path), &place);
  if (error != ERROR_SUCCESS) return error;
  if (place.entry.exists()) return ERROR_ALREADY_EXISTS;
  error = ChangeRefused(place);
  return error == ERROR_SUCCESS ? MakeFolderAt(place) : error;
}

DWORD RemoveFolder(LPCWSTR path) {
  const auto lock = LockNames();
  Place place;
  const DWORD error = Locate(PathText(path), &place);
  if (error != ERROR_SUCCESS) return error;
  if (!place.entry.exists()) return ERROR_FILE_NOT_FOUND;
  return place.entry.facts.folder() ? RemoveFolderAt(place) : ERROR_DIRECTORY;
}

DWORD RemoveFile(LPCWSTR path) {
  const auto lock = LockNames();
  Place place;
  DWORD error = LocateExisting(PathText(path), &place);
  if (error != ERROR_SUCCESS) return error;
  if (place.entry.facts.folder()) return ERROR_ACCESS_DENIED;
  error = RemoveFileAt(place);
  if (error == ERROR_SUCCESS) GiveFileSpace(place.entry.facts.size);
  return error;
}

}  // namespace

DWORD GetFileAttributesW(LPCWSTR path) {
  const LastErrorBefore before;
  DWORD attributes = 0;
  const DWORD error = ReadAttributes(path, &attributes);
  return before.End(error, attributes, INVALID_FILE_ATTRIBUTES);
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
