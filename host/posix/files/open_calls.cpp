// CreateFileW on files, and SetFilePointer.
#include "common/calls/errors.h"
#include "common/files/file_space.h"
#include "common/files/files.h"
#include "common/files/open_request.h"
#include "common/files/paths.h"
#include "posix/files/open_file.h"

namespace host {

std::shared_ptr<Stream> OpenFileByPath(LPCWSTR path, const OpenRequest& request) {
  std::shared_ptr<OpenFile> file;
  const OpenMode mode = {request.access, request.share, request.disposition};
  DWORD error = CheckOpenRequest(request);
  if (error != ERROR_SUCCESS) return Fail(error, file);
  const auto lock = LockNames();
  Place place;
  error = Locate(PathText(path), &place);
  if (error == ERROR_SUCCESS) error = OpenAt(place, PathText(path), mode, &file);
  return error == ERROR_SUCCESS ? file : Fail(error, std::shared_ptr<OpenFile>());
}

DWORD SetFilePointer(HANDLE file, LONG distance, LONG* distance_high, DWORD method) {
  const auto open = FindStream<OpenFile>(file);
  if (open == nullptr) return INVALID_SET_FILE_POINTER;
  const std::int64_t whole = SeekDistance(distance, distance_high);
  const std::int64_t position = open->Seek(whole, method, distance_high == nullptr);
  return position < 0 ? INVALID_SET_FILE_POINTER : SeekAnswer(position, distance_high);
}

}  // namespace host
