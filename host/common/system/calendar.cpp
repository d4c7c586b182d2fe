#include "common/system/calendar.h"

#include "common/calls/errors.h"

namespace host {
namespace {

constexpr std::int64_t kDaysPer400Years = 146097;
constexpr std::int64_t kDaysTo1601 = 584694;  // from 1 March of the year 0

std::int64_t FloorDivide(std::int64_t value, std::int64_t by) {
  return value / by - (value % by != 0 && (value < 0) != (by < 0) ? 1 : 0);
}

// Years are counted from March, so that the leap day is a year's last, and in cycles of 400 years.
std::int64_t DaysBeforeMonth(int month_from_march) { return (153 * month_from_march + 2) / 5; }

}  // namespace

std::int64_t DaysSince1601(int year, int month, int day) {
  const std::int64_t march_year = year - (month <= 2 ? 1 : 0);
  const std::int64_t cycle = FloorDivide(march_year, 400);
  const std::int64_t year_of_cycle = march_year - cycle * 400;
  const std::int64_t leap_days = year_of_cycle / 4 - year_of_cycle / 100;
  const std::int64_t day_of_year = DaysBeforeMonth((month + 9) % 12) + day - 1;
  return cycle * kDaysPer400Years + year_of_cycle * 365 + leap_days + day_of_year - kDaysTo1601;
}

int DaysInMonth(int year, int month) {
  const int next_year = month == 12 ? year + 1 : year;
  return static_cast<int>(DaysSince1601(next_year, month % 12 + 1, 1) - DaysSince1601(year, month, 1));
}

int DayOfWeek(std::int64_t days) {
  constexpr std::int64_t kMonday = 1;  // 1 January 1601
  return static_cast<int>(days + kMonday - FloorDivide(days + kMonday, 7) * 7);
}

bool IsTimeOfDay(const SYSTEMTIME& time) {
  return time.wHour < 24 && time.wMinute < 60 && time.wSecond < 60 && time.wMilliseconds < 1000;
}

bool IsCalendarTime(const SYSTEMTIME& time) {
  const bool month = time.wYear >= kFirstYear && time.wYear <= kLastYear && time.wMonth >= 1 && time.wMonth <= 12;
  return month && time.wDay >= 1 && time.wDay <= DaysInMonth(time.wYear, time.wMonth) && IsTimeOfDay(time);
}

std::int64_t MsOfDay(const SYSTEMTIME& time) {
  return ((time.wHour * 60 + time.wMinute) * 60 + time.wSecond) * std::int64_t{1000} + time.wMilliseconds;
}

std::int64_t MsOfCalendar(const SYSTEMTIME& time) {
  return DaysSince1601(time.wYear, time.wMonth, time.wDay) * kMsPerDay + MsOfDay(time);
}

SYSTEMTIME CalendarOfMs(std::int64_t ms) {
  const std::int64_t days = FloorDivide(ms, kMsPerDay);
  const std::int64_t of_day = ms - days * kMsPerDay;
  const std::int64_t cycle = FloorDivide(days + kDaysTo1601, kDaysPer400Years);
  const std::int64_t day_of_cycle = days + kDaysTo1601 - cycle * kDaysPer400Years;
  const std::int64_t year_of_cycle =
      (day_of_cycle - day_of_cycle / 1460 + day_of_cycle / 36524 - day_of_cycle / 146096) / 365;
  const std::int64_t day_of_year = day_of_cycle - (365 * year_of_cycle + year_of_cycle / 4 - year_of_cycle / 100);
  const int month_from_march = static_cast<int>((5 * day_of_year + 2) / 153);
  const int month = month_from_march < 10 ? month_from_march + 3 : month_from_march - 9;
  SYSTEMTIME time = {};
  time.wYear = static_cast<WORD>(cycle * 400 + year_of_cycle + (month <= 2 ? 1 : 0));
  time.wMonth = static_cast<WORD>(month);
  time.wDay = static_cast<WORD>(day_of_year - DaysBeforeMonth(month_from_march) + 1);
  time.wDayOfWeek = static_cast<WORD>(DayOfWeek(days));
  time.wHour = static_cast<WORD>(of_day / 3600000);
  time.wMinute = static_cast<WORD>(of_day / kMsPerMinute % 60);
  time.wSecond = static_cast<WORD>(of_day / 1000 % 60);
  time.wMilliseconds = static_cast<WORD>(of_day % 1000);
  return time;
}

std::int64_t TicksOf(const FILETIME& time) {
  return static_cast<std::int64_t>(std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime);
}

FILETIME FileTimeOf(std::int64_t ticks) {
  const auto bits = static_cast<std::uint64_t>(ticks);
  return {static_cast<DWORD>(bits), static_cast<DWORD>(bits >> 32)};
}

BOOL FileTimeToSystemTime(const FILETIME* time, LPSYSTEMTIME calendar) {
  const bool good = time != nullptr && calendar != nullptr && TicksOf(*time) >= 0;
  if (!good) return Fail(ERROR_INVALID_PARAMETER, FALSE);
  *calendar = CalendarOfMs(TicksOf(*time) / kTicksPerMs);
  return TRUE;
}

BOOL SystemTimeToFileTime(const SYSTEMTIME* calendar, LPFILETIME time) {
  const bool good = calendar != nullptr && time != nullptr && IsCalendarTime(*calendar);
  if (!good) return Fail(ERROR_INVALID_PARAMETER, FALSE);
  *time = FileTimeOf(MsOfCalendar(*calendar) * kTicksPerMs);
  return TRUE;
}

}  // namespace host
