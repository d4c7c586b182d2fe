#include "common/system/zone_rules.h"

#include <algorithm>
#include <vector>

#include "common/system/calendar.h"

namespace host {
namespace {

constexpr int kLastInMonth = 5;

struct Change {
  std::int64_t utc;
  DWORD to;
};

bool IsYearly(const SYSTEMTIME& date) { return date.wYear == 0; }

bool IsChangeDate(const SYSTEMTIME& date) {
  if (!IsYearly(date)) return IsCalendarTime(date);
  return date.wMonth >= 1 && date.wMonth <= 12 && date.wDay >= 1 && date.wDay <= kLastInMonth && date.wDayOfWeek < 7 &&
         IsTimeOfDay(date);
}

bool HasDaylightTime(const TIME_ZONE_INFORMATION& zone) {
  return zone.StandardDate.wMonth != 0 && zone.DaylightDate.wMonth != 0;
}

std::int64_t StandardBias(const TIME_ZONE_INFORMATION& zone) { return std::int64_t{zone.Bias} + zone.StandardBias; }
std::int64_t DaylightBias(const TIME_ZONE_INFORMATION& zone) { return std::int64_t{zone.Bias} + zone.DaylightBias; }

/// The local time, before the change, at which it comes in this year.
std::int64_t YearlyChange(const SYSTEMTIME& date, int year) {
  const std::int64_t first = DaysSince1601(year, date.wMonth, 1);
  int day = (date.wDayOfWeek - DayOfWeek(first) + 7) % 7 + (date.wDay - 1) * 7;
  if (day >= DaysInMonth(year, date.wMonth)) day -= 7;
  return (first + day) * kMsPerDay + MsOfDay(date);
}

/// The changes to one kind of time around a year: that year's and its neighbours', or the one that is dated.
void AppendChanges(const SYSTEMTIME& date, std::int64_t bias_before, DWORD to, int year, std::vector<Change>* changes) {
  const auto append = [&](std::int64_t local) { changes->push_back({local + bias_before * kMsPerMinute, to}); };
  if (!IsYearly(date)) return append(MsOfCalendar(date));
  for (int around = year - 1; around <= year + 1; ++around) append(YearlyChange(date, around));
}

DWORD TimeInForce(const TIME_ZONE_INFORMATION& zone, std::int64_t utc) {
  const std::int64_t standard_time = utc - StandardBias(zone) * kMsPerMinute;
  const int year = CalendarOfMs(std::max<std::int64_t>(standard_time, 0)).wYear;
  std::vector<Change> changes;
  AppendChanges(zone.DaylightDate, StandardBias(zone), TIME_ZONE_ID_DAYLIGHT, year, &changes);
  AppendChanges(zone.StandardDate, DaylightBias(zone), TIME_ZONE_ID_STANDARD, year, &changes);
  std::stable_sort(changes.begin(), changes.end(), [](const Change& a, const Change& b) { return a.utc < b.utc; });
  DWORD id = changes.front().to == TIME_ZONE_ID_DAYLIGHT ? TIME_ZONE_ID_STANDARD : TIME_ZONE_ID_DAYLIGHT;
  for (const Change& change : changes) {
    if (change.utc <= utc) id = change.to;
  }
  return id;
}

}  // namespace

bool IsZone(const TIME_ZONE_INFORMATION& zone) {
  if (zone.StandardDate.wMonth == 0 && zone.DaylightDate.wMonth == 0) return true;
  return IsChangeDate(zone.StandardDate) && IsChangeDate(zone.DaylightDate);
}

ZoneTime ZoneTimeAt(const TIME_ZONE_INFORMATION& zone, std::int64_t utc) {
  if (!HasDaylightTime(zone)) return {TIME_ZONE_ID_UNKNOWN, zone.Bias};
  const DWORD id = TimeInForce(zone, utc);
  return {id, id == TIME_ZONE_ID_DAYLIGHT ? DaylightBias(zone) : StandardBias(zone)};
}

std::int64_t LocalFromUtc(const TIME_ZONE_INFORMATION& zone, std::int64_t utc) {
  return utc - ZoneTimeAt(zone, utc).bias * kMsPerMinute;
}

std::int64_t UtcFromLocal(const TIME_ZONE_INFORMATION& zone, std::int64_t local, std::int64_t preferred_bias) {
  if (!HasDaylightTime(zone)) return local + zone.Bias * kMsPerMinute;
  for (const std::int64_t bias : {preferred_bias, StandardBias(zone), DaylightBias(zone)}) {
    const std::int64_t utc = local + bias * kMsPerMinute;
    if (ZoneTimeAt(zone, utc).bias == bias) return utc;
  }
  return local + StandardBias(zone) * kMsPerMinute;
}

}  // namespace host
