#include "commands/instrument/inspection_date.h"

#include <cstdint>
#include <cstdio>

#include "commands/measure/valuetext/date_text.h"
#include "platform/windows_api.h"

namespace qxcm {

namespace {

constexpr std::size_t kDateLength = 8;
constexpr std::size_t kDateAndTimeLength = 14;
constexpr double kDaysFrom1601 = 109205.0;  // from 1 January 1601 to 30 December 1899
constexpr double kSecondsOfADay = 86400.0;
constexpr double kDaysOfASecond = 1.0 / 86400.0;
constexpr std::int64_t kUnitsOfASecond = 10000000;  // of a file time
constexpr double kHalfUnit = 0.0001;                // seconds: makes up for the rounding of days
constexpr double kEarliest = -657435.0;             // days, both borders excluded
constexpr double kLatest = 2958466.0;

std::int64_t UnitsOf(const FILETIME& time) {
  return static_cast<std::int64_t>(std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime);
}

FILETIME FileTimeOf(std::int64_t units) {
  const auto bits = static_cast<std::uint64_t>(units);
  return {static_cast<DWORD>(bits & 0xFFFFFFFF), static_cast<DWORD>(bits >> 32)};
}

}  // namespace

std::optional<double> ParseInspectionDate(std::string_view text) {
  if (text.size() != kDateLength && text.size() != kDateAndTimeLength) return std::nullopt;
  SYSTEMTIME calendar = {};
  FILETIME time = {};
  if (!ParseDate(text.substr(0, kDateLength), &calendar) || !ParseTime(text.substr(kDateLength), &calendar) ||
      !SystemTimeToFileTime(&calendar, &time)) {
    return std::nullopt;
  }
  const std::int64_t seconds = UnitsOf(time) / kUnitsOfASecond;
  const double days = static_cast<double>(seconds) * kDaysOfASecond - kDaysFrom1601;
  if (days <= kEarliest || days >= kLatest) return std::nullopt;
  return days;
}

std::optional<std::string> FormatInspectionDate(double days) {
  double seconds = (days + kDaysFrom1601) * kSecondsOfADay;
  seconds += seconds < 0 ? -kHalfUnit : kHalfUnit;
  constexpr double kMostSeconds = static_cast<double>(INT64_MAX / kUnitsOfASecond);
  if (!(seconds > -1.0 && seconds < kMostSeconds)) return std::nullopt;  // nor what is not a number
  const FILETIME time = FileTimeOf(static_cast<std::int64_t>(seconds) * kUnitsOfASecond);
  SYSTEMTIME calendar = {};
  if (!FileTimeToSystemTime(&time, &calendar)) return std::nullopt;
  char text[64];
  std::snprintf(text, sizeof text, "%04d%02d%02d%02d%02d%02d", calendar.wYear, calendar.wMonth, calendar.wDay,
                calendar.wHour, calendar.wMinute, calendar.wSecond);
  return text;
}

}  // namespace qxcm
