#include "common/files/open_request.h"

namespace host {

DWORD CheckOpenRequest(const OpenRequest& request) {
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

std::int64_t SeekDistance(LONG distance, const LONG* distance_high) {
  if (distance_high == nullptr) return distance;
  return static_cast<std::int64_t>(static_cast<std::uint64_t>(*distance_high) << 32 | static_cast<DWORD>(distance));
}

DWORD SeekAnswer(std::int64_t position, LONG* distance_high) {
  if (distance_high != nullptr) *distance_high = static_cast<LONG>(position >> 32);
  SetLastError(NO_ERROR);
  return static_cast<DWORD>(position & 0xFFFFFFFF);
}

}  // namespace host
