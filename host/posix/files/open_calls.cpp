// CreateFileW on files, and SetFilePointer.
#include "common/calls/errors.h"
#include "common/files/file_space.h"
#include "common/files/files.h"
#include "common/files/paths.h"
#include "posix/files/open_file.h"

namespace host {
namespace {

constexpr DWORD kLastDisposition = 5;  // TRUNCATE_EXISTING

DWORD CheckRequest(const OpenRequest& request) {
  constexpr DWORD kAccess = GENERIC_READ | GENERIC_WRITE;
  constexpr DWORD kShare = FILE_SHARE_READ | FILE_SHARE_WRITE;
  const bool known = request.disposition >= CREATE_NEW && request.disposition <= kLastDisposition;
  if (!known || (request.share & ~kShare) != 0) return ERROR_INVALID_PARAMETER;
  if (request.access == 0 || (request.access & ~kAccess) != 0) return ERROR_INVALID_PARAMETER;
  const bool offered = request.disposition == CREATE_NEW || request.disposition == OPEN_EXISTING;
  const bool plain = request.flags == 0 || request.flags == FILE_ATTRIBUTE_NORMAL;
  return offered && plain ? ERROR_SUCCESS : ERROR_NOT_SUPPORTED;
}

}  // namespace

std::shared_ptr<Stream> OpenFileByPath(LPCWSTR path, const OpenRequest& request) {
  std::shared_ptr<OpenFile> file;
  const OpenMode mode = {request.access, request.share, request.disposition};
  DWORD error = CheckRequest(request);
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
  std::int64_t whole = distance;
  if (distance_high != nullptr) {
    whole = static_cast<std::int64_t>(static_cast<std::uint64_t>(*distance_high) << 32 | static_cast<DWORD>(distance));
  }
  const std::int64_t position = open->Seek(whole, method, distance_high == nullptr);
  if (position < 0) return INVALID_SET_FILE_POINTER;
  if (distance_high != nullptr) *distance_high = static_cast<LONG>(position >> 32);
  SetLastError(NO_ERROR);
  return static_cast<DWORD>(position & 0xFFFFFFFF);
}

}  // namespace host
