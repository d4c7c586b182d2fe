// What a time zone's rules make of a moment: standard or daylight time, and the local time.
//
// Moments and local times are milliseconds since the beginning of 1601.
#ifndef QXHOST_COMMON_SYSTEM_ZONE_RULES_H
#define QXHOST_COMMON_SYSTEM_ZONE_RULES_H

#include <windows.h>

#include <cstdint>

namespace host {

/// Which time is in force (a TIME_ZONE_ID) and its bias: UTC = local time + bias, in minutes.
struct ZoneTime {
  DWORD id;
  std::int64_t bias;
};

/// Whether the change dates can be used. Either both months are 0 (no daylight time) or both dates are given, each as a
/// date (the year is not 0: once) or as a day in a month (year 0: every year, on the day-th such day of the week; 5 is
/// the last).
bool IsZone(const TIME_ZONE_INFORMATION& zone);

/// The last change at or before the moment counts; before the first of two dated ones, what that one ends.
ZoneTime ZoneTimeAt(const TIME_ZONE_INFORMATION& zone, std::int64_t utc);

std::int64_t LocalFromUtc(const TIME_ZONE_INFORMATION& zone, std::int64_t utc);

/// An hour that comes twice is taken with the preferred bias where that is one of its two, an hour that is left out
/// with the standard bias.
std::int64_t UtcFromLocal(const TIME_ZONE_INFORMATION& zone, std::int64_t local, std::int64_t preferred_bias);

}  // namespace host

#endif
