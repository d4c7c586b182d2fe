#include "qxsim/api/time_text.h"

#include <cstdio>

#include "common/system/calendar.h"
#include "common/system/clock.h"
#include "qxsim/api/http_types.h"

namespace qxsim {
namespace {

constexpr int kFirstYear = 1980;
constexpr int kLastYear = 2107;

// UTC less local time: what the instrument's lists count with now.
std::int64_t Bias() {
  const std::int64_t utc = host::DaysSince1601(2000, 1, 1) * host::kMsPerDay * host::kTicksPerMs;
  const FILETIME time = host::FileTimeOf(utc);
  FILETIME local = {};
  host::FileTimeToLocalFileTime(&time, &local);
  return utc - host::TicksOf(local);
}

}  // namespace

std::string TimeText(const FILETIME& time) {
  FILETIME local = {};
  SYSTEMTIME at = {};
  host::FileTimeToLocalFileTime(&time, &local);
  host::FileTimeToSystemTime(&local, &at);
  char text[40];
  std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d", at.wYear, at.wMonth, at.wDay, at.wHour, at.wMinute,
                at.wSecond);
  return text;
}

FILETIME TimeFrom(const std::string& text) {
  int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
  std::sscanf(text.c_str(), "%4d-%2d-%2dT%2d:%2d:%2d", &year, &month, &day, &hour, &minute, &second);
  SYSTEMTIME at = {};
  at.wYear = static_cast<WORD>(year);
  at.wMonth = static_cast<WORD>(month);
  at.wDay = static_cast<WORD>(day);
  at.wHour = static_cast<WORD>(hour);
  at.wMinute = static_cast<WORD>(minute);
  at.wSecond = static_cast<WORD>(second);
  if (year >= kFirstYear && year <= kLastYear && host::IsCalendarTime(at)) {
    const FILETIME time = host::FileTimeOf(host::MsOfCalendar(at) * host::kTicksPerMs + Bias());
    if (TimeText(time) == text) return time;  // no blanks, nothing behind
  }
  throw ApiError(kBadRequest, "written: a time like 2024-01-31T09:30:05 is expected, 1980 to 2107");
}

}  // namespace qxsim
