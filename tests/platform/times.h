// Calendar times and time zones for the tests of the clock.
#ifndef QXTEST_PLATFORM_TIMES_H
#define QXTEST_PLATFORM_TIMES_H

#include <windows.h>

#include <cstdint>
#include <string>

namespace platform_test {

SYSTEMTIME At(int year, int month, int day, int hour = 0, int minute = 0, int second = 0, int ms = 0);
/// "2024-01-31 09:30:05".
std::string Text(const SYSTEMTIME& time);
/// Seconds since 1601, counted day by day.
std::int64_t Seconds(const SYSTEMTIME& time);
FILETIME FileTime(std::uint64_t ticks);
std::uint64_t Ticks(const FILETIME& time);
/// The local time.
SYSTEMTIME Now();

/// The change comes each year on the nth such day of the week (0 Sunday) of a month; 5 is the last.
SYSTEMTIME Yearly(int month, int nth, int day_of_week, int hour, int minute = 0);
/// A zone so many minutes west of UTC; without dates it has no daylight time, else it is an hour ahead.
TIME_ZONE_INFORMATION Zone(LONG bias, const SYSTEMTIME& daylight = {}, const SYSTEMTIME& standard = {});
/// One hour east; daylight time from the last Sunday of March, 2:00, to that of October, 3:00.
TIME_ZONE_INFORMATION NorthernZone();
/// Ten hours east; daylight time from the first Sunday of October, 2:00, to that of April, 3:00.
TIME_ZONE_INFORMATION SouthernZone();

}  // namespace platform_test

#endif
