// Calendar dates and counts of time since the beginning of 1601, in the Gregorian calendar without leap seconds.
//
// Milliseconds hold every date and every sum of biases without overflow; 100 ns ticks are the platform's file times.
#ifndef QXHOST_COMMON_SYSTEM_CALENDAR_H
#define QXHOST_COMMON_SYSTEM_CALENDAR_H

#include <windows.h>

#include <cstdint>

namespace host {

constexpr std::int64_t kMsPerMinute = 60000;
constexpr std::int64_t kMsPerDay = 86400000;
constexpr std::int64_t kTicksPerMs = 10000;
constexpr int kFirstYear = 1601;
constexpr int kLastYear = 30827;

/// Days from 1 January 1601 to a date; negative before it. month 1..12, day 1..31.
std::int64_t DaysSince1601(int year, int month, int day);
int DaysInMonth(int year, int month);
/// 0 for Sunday to 6 for Saturday.
int DayOfWeek(std::int64_t days);

/// Whether hour, minute, second and milliseconds are a time of day.
bool IsTimeOfDay(const SYSTEMTIME& time);
/// Whether it is a date and time of the years 1601 to 30827. The day of the week is not looked at.
bool IsCalendarTime(const SYSTEMTIME& time);

/// The time of day alone, in milliseconds.
std::int64_t MsOfDay(const SYSTEMTIME& time);
/// Milliseconds since 1601 of a calendar time that IsCalendarTime accepts.
std::int64_t MsOfCalendar(const SYSTEMTIME& time);
/// The calendar time, with its day of the week, of a count that is not negative.
SYSTEMTIME CalendarOfMs(std::int64_t ms);

std::int64_t TicksOf(const FILETIME& time);
FILETIME FileTimeOf(std::int64_t ticks);

/// FALSE with last error 87 for a null pointer and for a time with the highest bit set.
BOOL FileTimeToSystemTime(const FILETIME* time, LPSYSTEMTIME calendar);
/// Its inverse; the day of the week is not looked at. FALSE with last error 87 for a null pointer and for what is no
/// date and time of the years 1601 to 30827.
BOOL SystemTimeToFileTime(const SYSTEMTIME* calendar, LPFILETIME time);

}  // namespace host

#endif
