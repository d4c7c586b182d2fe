// CreateFileW on files, and SetFilePointer.
#include "common/calls/errors.h"
#include "common/calls/last_error.h"
#include "common/disk/paths.h"
#include "common/files/file_space.h"
#include "common/files/files.h"
#include "common/files/open_file.h"
#include "disk/places.h"
#include "files/disk_file.h"

namespace host {
namespace {

using Opened = std::shared_ptr<DiskFile>;

DWORD CheckRequest(const OpenRequest& request) {
  constexpr DWORD kAccess = GENERIC_READ | GENERIC_WRITE;
  constexpr DWORD kShare = FILE_SHARE_READ | FILE_SHARE_WRITE;
  constexpr DWORD kLastDisposition = 5;  // TRUNCATE_EXISTING
  const bool known = request.disposition >= CREATE_NEW && request.disposition <= kLastDisposition;
  if (!known || (request.share & ~kShare) != 0) return ERROR_INVALID_PARAMETER;
  if (request.access == 0 || (request.access & ~kAccess) != 0) return ERROR_INVALID_PARAMETER;
  const bool offered = request.disposition == CREATE_NEW || request.disposition == OPEN_EXISTING;
  const bool plain = request.flags == 0 || request.flags == FILE_ATTRIBUTE_NORMAL;
  return offered && plain ? ERROR_SUCCESS : ERROR_NOT_SUPPORTED;
}

DWORD OpenByPath(WideView path, const OpenRequest& request, Opened* file) {
  DWORD error = CheckRequest(request);
  if (error != ERROR_SUCCESS) return error;
  const auto lock = LockNames();
  Place place;
  error = Locate(path, &place);
  if (error != ERROR_SUCCESS) return error;
  error = request.disposition == CREATE_NEW ? CheckNew(place) : CheckExisting(place, request.access);
  return error == ERROR_SUCCESS ? OpenAt(place, path, request, file) : error;
}

// Without a place for the high part the distance is a signed 32-bit number.
std::int64_t SeekDistance(LONG distance, const LONG* distance_high) {
  if (distance_high == nullptr) return distance;
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(*distance_high) << 32 | static_cast<DWORD>(distance));
}

DWORD SeekAnswer(std::int64_t position, LONG* distance_high) {
  if (distance_high != nullptr) *distance_high = static_cast<LONG>(position >> 32);
  SetLastError(NO_ERROR);
  return static_cast<DWORD>(position & 0xFFFFFFFF);
}

}  // namespace

std::shared_ptr<Stream> OpenFileByPath(LPCWSTR path, const OpenRequest& request) {
  const LastErrorBefore before;
  Opened file;
  const DWORD error = OpenByPath(PathText(path), request, &file);
  return before.End(error, file, Opened());
}

DWORD SetFilePointer(HANDLE file, LONG distance, LONG* distance_high, DWORD method) {
  const auto open = FindStream<OpenFile>(file);
  if (open == nullptr) return INVALID_SET_FILE_POINTER;
  const std::int64_t whole = SeekDistance(distance, distance_high);
  const std::int64_t position = open->Seek(whole, method, distance_high == nullptr);
  return position < 0 ? INVALID_SET_FILE_POINTER : SeekAnswer(position, distance_high);
}

}  // namespace host
