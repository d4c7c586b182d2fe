// The zones' rules against the C library's own, on both sides of every change, to the second.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <random>

#include "common/system/zone_rules.h"
#include "instrument/time_zones.h"
#include "times.h"

namespace platform_test {
namespace {

constexpr std::int64_t kSecondsTo1970 = 11644473600;

/// Sets the C library's zone for the length of a test.
class LibraryZone {
 public:
  explicit LibraryZone(const std::string& rules) {
    setenv("TZ", rules.c_str(), 1);
    tzset();
  }
  LibraryZone(const LibraryZone&) = delete;
  LibraryZone& operator=(const LibraryZone&) = delete;
  ~LibraryZone() {
    unsetenv("TZ");
    tzset();
  }

  static std::tm Local(std::int64_t utc) {
    const std::time_t seconds = utc - kSecondsTo1970;
    std::tm local = {};
    localtime_r(&seconds, &local);
    return local;
  }
};

std::string Offset(LONG minutes) {
  char text[64];
  std::snprintf(text, sizeof text, "%s%d:%02d", minutes < 0 ? "-" : "", std::abs(minutes) / 60, std::abs(minutes) % 60);
  return text;
}

std::string ChangeText(const SYSTEMTIME& date) {
  char text[96];
  std::snprintf(text, sizeof text, ",M%d.%d.%d/%d:%02d:%02d", date.wMonth, date.wDay, date.wDayOfWeek, date.wHour,
                date.wMinute, date.wSecond);
  return text;
}

/// The zone in the C library's words.
std::string Rules(const TIME_ZONE_INFORMATION& zone) {
  if (zone.StandardDate.wMonth == 0) return "<STD>" + Offset(zone.Bias);
  return "<STD>" + Offset(zone.Bias + zone.StandardBias) + "<DST>" + Offset(zone.Bias + zone.DaylightBias) +
         ChangeText(zone.DaylightDate) + ChangeText(zone.StandardDate);
}

void ExpectSameLocalTime(const TIME_ZONE_INFORMATION& zone, std::int64_t utc) {
  const std::tm expected = LibraryZone::Local(utc);
  const SYSTEMTIME local = At(expected.tm_year + 1900, expected.tm_mon + 1, expected.tm_mday, expected.tm_hour,
                              expected.tm_min, expected.tm_sec);
  ASSERT_EQ(host::LocalFromUtc(zone, utc * 1000), Seconds(local) * 1000) << Rules(zone) << " at " << utc;
  if (zone.StandardDate.wMonth == 0) return;
  const DWORD expected_id = expected.tm_isdst != 0 ? TIME_ZONE_ID_DAYLIGHT : TIME_ZONE_ID_STANDARD;
  ASSERT_EQ(host::ZoneTimeAt(zone, utc * 1000).id, expected_id) << Rules(zone) << " at " << Text(local);
}

/// The first moment, after the one of two at which the C library's offset is another, that has the other's.
std::int64_t ChangeBetween(std::int64_t before, std::int64_t after) {
  const auto offset = LibraryZone::Local(before).tm_gmtoff;
  while (after - before > 1) {
    const std::int64_t middle = before + (after - before) / 2;
    (LibraryZone::Local(middle).tm_gmtoff == offset ? before : after) = middle;
  }
  return after;
}

/// Compares around every change that the C library makes in these years; returns how many there were.
int CompareChanges(const TIME_ZONE_INFORMATION& zone, int first_year, int last_year) {
  const LibraryZone library(Rules(zone));
  constexpr std::int64_t kStep = 6 * 86400;  // no two changes are nearer to each other
  int changes = 0;
  const std::int64_t end = Seconds(At(last_year + 1, 1, 1));
  for (std::int64_t utc = Seconds(At(first_year, 1, 1)); utc < end; utc += kStep) {
    ExpectSameLocalTime(zone, utc);
    if (LibraryZone::Local(utc).tm_gmtoff == LibraryZone::Local(utc + kStep).tm_gmtoff) continue;
    ++changes;
    const std::int64_t change = ChangeBetween(utc, utc + kStep);
    for (const int beside : {-3601, -3600, -3599, -2, -1, 0, 1, 2, 3599, 3600, 3601}) {
      ExpectSameLocalTime(zone, change + beside);
    }
  }
  return changes;
}

TEST(ZoneRules, AgreeWithTheLibraryInNorthAndSouth) {
  EXPECT_EQ(CompareChanges(NorthernZone(), 1980, 2100), 2 * 121);
  EXPECT_EQ(CompareChanges(SouthernZone(), 1980, 2100), 2 * 121);
  EXPECT_EQ(CompareChanges(Zone(-345), 1980, 2100), 0);
}

TEST(ZoneRules, AgreeWithTheLibraryInEveryZoneOfTheInstrument) {
  for (const auto& row : host::instrument::TimeZones()) {
    const int changes = row.rules.DaylightDate.wMonth != 0 ? 2 : 0;
    EXPECT_EQ(CompareChanges(row.rules, 2000, 2039), 40 * changes) << row.key;
  }
}

TEST(ZoneRules, AgreeWithTheLibraryOnAnyYearlyRules) {
  std::mt19937 random(421);
  const auto pick = [&random](int first, int last) { return std::uniform_int_distribution<int>(first, last)(random); };
  for (int round = 0; round < 400; ++round) {
    // The C library looks at one year alone: its changes are kept off the new year, and apart from each other.
    const int spring = pick(2, 5), autumn = pick(7, 11);
    SYSTEMTIME first = Yearly(spring, pick(1, 5), pick(0, 6), pick(0, 23), pick(0, 59));
    SYSTEMTIME second = Yearly(autumn, pick(1, 5), pick(0, 6), pick(0, 23), pick(0, 59));
    first.wSecond = static_cast<WORD>(pick(0, 59));
    if (pick(0, 1) == 1) std::swap(first, second);
    TIME_ZONE_INFORMATION zone = Zone(pick(-14 * 60, 12 * 60), first, second);
    zone.DaylightBias = pick(0, 3) == 0 ? -30 : pick(0, 5) == 0 ? -120 : -60;
    const int year = pick(1980, 2097);
    ASSERT_EQ(CompareChanges(zone, year, year + 2), 6) << Rules(zone);
  }
}

TEST(ZoneRules, GiveEveryLocalTimeThatIsBackAsTheSameMoment) {
  std::mt19937 random(7);
  for (const TIME_ZONE_INFORMATION& zone : {NorthernZone(), SouthernZone(), Zone(210)}) {
    for (int round = 0; round < 20000; ++round) {
      const std::int64_t utc = (Seconds(At(1980, 1, 1)) + static_cast<std::int64_t>(random())) * 1000;
      const std::int64_t bias = host::ZoneTimeAt(zone, utc).bias;
      ASSERT_EQ(host::UtcFromLocal(zone, host::LocalFromUtc(zone, utc), bias), utc);
    }
  }
}

std::int64_t Utc(const SYSTEMTIME& local, std::int64_t preferred_bias) {
  return host::UtcFromLocal(NorthernZone(), Seconds(local) * 1000, preferred_bias) / 1000;
}

TEST(ZoneRules, TakeAnHourThatComesTwiceAsPreferred) {
  const SYSTEMTIME twice = At(2024, 10, 27, 2, 30);
  EXPECT_EQ(Utc(twice, -120), Seconds(At(2024, 10, 27, 0, 30)));
  EXPECT_EQ(Utc(twice, -60), Seconds(At(2024, 10, 27, 1, 30)));
  EXPECT_EQ(Utc(twice, 0), Seconds(At(2024, 10, 27, 1, 30)));
}

TEST(ZoneRules, TakeAnHourThatIsLeftOutAsStandardTime) {
  const SYSTEMTIME left_out = At(2024, 3, 31, 2, 30);
  for (const int bias : {-120, -60, 0}) EXPECT_EQ(Utc(left_out, bias), Seconds(At(2024, 3, 31, 1, 30)));
}

TEST(ZoneRules, HoldAcrossTheNewYear) {
  // Daylight time ends with the year: the change is at 0:00 of 1 January, which is 23:00 standard time of the day
  // before.
  const TIME_ZONE_INFORMATION zone = Zone(0, Yearly(7, 1, 0, 0), Yearly(1, 1, 1, 0));
  const std::int64_t change = Seconds(At(2023, 12, 31, 23));  // 1 January 2024 is a Monday
  EXPECT_EQ(host::ZoneTimeAt(zone, change * 1000 - 1).id, TIME_ZONE_ID_DAYLIGHT);
  EXPECT_EQ(host::ZoneTimeAt(zone, change * 1000).id, TIME_ZONE_ID_STANDARD);
}

TEST(ZoneRules, CountDatedChangesInTheirOrder) {
  const TIME_ZONE_INFORMATION south = Zone(0, At(2024, 10, 6, 2), At(2024, 4, 7, 3));
  const auto id = [&south](const SYSTEMTIME& utc) { return host::ZoneTimeAt(south, Seconds(utc) * 1000).id; };
  EXPECT_EQ(id(At(2020, 7, 1)), TIME_ZONE_ID_DAYLIGHT);
  EXPECT_EQ(id(At(2024, 4, 7, 1, 59, 59)), TIME_ZONE_ID_DAYLIGHT);
  EXPECT_EQ(id(At(2024, 4, 7, 2)), TIME_ZONE_ID_STANDARD);
  EXPECT_EQ(id(At(2024, 10, 6, 1, 59, 59)), TIME_ZONE_ID_STANDARD);
  EXPECT_EQ(id(At(2024, 10, 6, 2)), TIME_ZONE_ID_DAYLIGHT);
  EXPECT_EQ(id(At(2030, 7, 1)), TIME_ZONE_ID_DAYLIGHT);
}

}  // namespace
}  // namespace platform_test
