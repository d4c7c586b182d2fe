// Times of files in the API: "2024-01-31T09:30:05", the instrument's local time to the second, as its lists show them.
#ifndef QXSIM_API_TIME_TEXT_H
#define QXSIM_API_TIME_TEXT_H

#include <windows.h>

#include <string>

namespace qxsim {

/// Fractions of a second are left out.
std::string TimeText(const FILETIME& time);

/// The years 1980 to 2107 of UTC, which the instrument's disk can keep. Throws ApiError(400) for anything but such a
/// time.
FILETIME TimeFrom(const std::string& text);

}  // namespace qxsim

#endif
