#include "times.h"

#include <cstdio>

namespace platform_test {
namespace {

bool Leap(int year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

int LengthOf(int month, int year) {
  constexpr int kLengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return kLengths[month - 1] + (month == 2 && Leap(year) ? 1 : 0);
}

void Name(WCHAR* to, LPCWSTR name) {
  while ((*to++ = *name++) != 0) {
  }
}

}  // namespace

SYSTEMTIME At(int year, int month, int day, int hour, int minute, int second, int ms) {
  SYSTEMTIME time = {};
  time.wYear = static_cast<WORD>(year);
  time.wMonth = static_cast<WORD>(month);
  time.wDay = static_cast<WORD>(day);
  time.wHour = static_cast<WORD>(hour);
  time.wMinute = static_cast<WORD>(minute);
  time.wSecond = static_cast<WORD>(second);
  time.wMilliseconds = static_cast<WORD>(ms);
  return time;
}

std::string Text(const SYSTEMTIME& time) {
  char text[64];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d", time.wYear, time.wMonth, time.wDay, time.wHour,
                time.wMinute, time.wSecond);
  return text;
}

std::int64_t Seconds(const SYSTEMTIME& time) {
  std::int64_t days = time.wDay - 1;
  for (int year = 1601; year < time.wYear; ++year) days += Leap(year) ? 366 : 365;
  for (int month = 1; month < time.wMonth; ++month) days += LengthOf(month, time.wYear);
  return ((days * 24 + time.wHour) * 60 + time.wMinute) * 60 + time.wSecond;
}

FILETIME FileTime(std::uint64_t ticks) {
  FILETIME time = {};
  time.dwLowDateTime = static_cast<DWORD>(ticks);
  time.dwHighDateTime = static_cast<DWORD>(ticks >> 32);
  return time;
}

std::uint64_t Ticks(const FILETIME& time) { return std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime; }

SYSTEMTIME Now() {
  SYSTEMTIME time = {};
  GetLocalTime(&time);
  return time;
}

SYSTEMTIME Yearly(int month, int nth, int day_of_week, int hour, int minute) {
  SYSTEMTIME date = At(0, month, nth, hour, minute);
  date.wDayOfWeek = static_cast<WORD>(day_of_week);
  return date;
}

TIME_ZONE_INFORMATION Zone(LONG bias, const SYSTEMTIME& daylight, const SYSTEMTIME& standard) {
  TIME_ZONE_INFORMATION zone = {};
  zone.Bias = bias;
  zone.DaylightBias = -60;
  zone.DaylightDate = daylight;
  zone.StandardDate = standard;
  Name(zone.StandardName, TEXT("Test Standard Time"));
  Name(zone.DaylightName, TEXT("Test Daylight Time"));
  return zone;
}

TIME_ZONE_INFORMATION NorthernZone() { return Zone(-60, Yearly(3, 5, 0, 2), Yearly(10, 5, 0, 3)); }
TIME_ZONE_INFORMATION SouthernZone() { return Zone(-600, Yearly(10, 1, 0, 2), Yearly(4, 1, 0, 3)); }

}  // namespace platform_test
