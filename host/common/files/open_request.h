// What every host's file calls make of their arguments: an open request, the distance to move in a file.
#ifndef QXHOST_COMMON_FILES_OPEN_REQUEST_H
#define QXHOST_COMMON_FILES_OPEN_REQUEST_H

#include <windows.h>

#include <cstdint>

#include "common/streams/devices.h"

namespace host {

/// 0 for what OpenFileByPath offers, else its error: 50 or 87.
DWORD CheckOpenRequest(const OpenRequest& request);

/// The distance of SetFilePointer: a signed 32-bit number without a place for the high part.
std::int64_t SeekDistance(LONG distance, const LONG* distance_high);
/// What SetFilePointer returns for a new position; the high part goes into its place, the last error is 0.
DWORD SeekAnswer(std::int64_t position, LONG* distance_high);

}  // namespace host

#endif
