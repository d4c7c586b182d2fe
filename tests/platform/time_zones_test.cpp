// The time zone, and what its rules make of the clock.
#include <gtest/gtest.h>
#include <windows.h>

#include "times.h"

namespace platform_test {
namespace {

constexpr std::uint64_t kTicksPerHour = 36000000000;

void SetZone(const TIME_ZONE_INFORMATION& zone) { ASSERT_TRUE(SetTimeZoneInformation(&zone)); }

void SetClock(const SYSTEMTIME& time) { ASSERT_TRUE(SetLocalTime(&time)); }

DWORD TimeInForce() {
  TIME_ZONE_INFORMATION zone = {};
  return GetTimeZoneInformation(&zone);
}

DWORD TimeInForceOn(const SYSTEMTIME& local) {
  SetClock(local);
  return TimeInForce();
}

void ExpectRefused(const TIME_ZONE_INFORMATION& zone) {
  SetLastError(ERROR_SUCCESS);
  EXPECT_FALSE(SetTimeZoneInformation(&zone));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}

/// The local time, without seconds, right after the clock has gone over the end of this minute.
std::string AfterTheMinute(SYSTEMTIME last) {
  last.wSecond = 59;
  last.wMilliseconds = 980;
  SetClock(last);
  while (Now().wMinute == last.wMinute) {
  }
  return Text(Now()).substr(0, 16);
}

TEST(TimeZone, ReadsAsItWasSet) {
  const TIME_ZONE_INFORMATION zone = NorthernZone();
  SetZone(zone);
  TIME_ZONE_INFORMATION read = {};
  GetTimeZoneInformation(&read);
  EXPECT_EQ(read.Bias, -60);
  EXPECT_EQ(read.StandardBias, 0);
  EXPECT_EQ(read.DaylightBias, -60);
  EXPECT_EQ(std::basic_string<WCHAR>(read.StandardName), TEXT("Test Standard Time"));
  EXPECT_EQ(std::basic_string<WCHAR>(read.DaylightName), TEXT("Test Daylight Time"));
  EXPECT_EQ(read.DaylightDate.wMonth, 3);
  EXPECT_EQ(read.StandardDate.wMonth, 10);
  EXPECT_EQ(read.StandardDate.wDay, 5);
  EXPECT_EQ(read.StandardDate.wHour, 3);
}

TEST(TimeZone, MovesTheLocalTimeAndNotTheMoment) {
  SetZone(Zone(0));
  SetClock(At(2024, 1, 31, 12));
  SetZone(Zone(-345));
  EXPECT_EQ(Text(Now()).substr(0, 16), "2024-01-31 17:45");
  SetZone(Zone(600));
  EXPECT_EQ(Text(Now()).substr(0, 16), "2024-01-31 02:00");
}

TEST(TimeZone, WithoutDatesHasNoDaylightTime) {
  SetZone(Zone(-60));
  for (const int month : {1, 4, 7, 10}) EXPECT_EQ(TimeInForceOn(At(2024, month, 15)), DWORD{TIME_ZONE_ID_UNKNOWN});
}

TEST(TimeZone, OfTheNorthHasDaylightTimeInSummer) {
  SetZone(NorthernZone());
  EXPECT_EQ(TimeInForceOn(At(2024, 1, 1)), DWORD{TIME_ZONE_ID_STANDARD});
  EXPECT_EQ(TimeInForceOn(At(2024, 3, 31, 1, 59, 50)), DWORD{TIME_ZONE_ID_STANDARD});
  EXPECT_EQ(TimeInForceOn(At(2024, 3, 31, 3)), DWORD{TIME_ZONE_ID_DAYLIGHT});
  EXPECT_EQ(TimeInForceOn(At(2024, 10, 27, 1, 59, 50)), DWORD{TIME_ZONE_ID_DAYLIGHT});
  EXPECT_EQ(TimeInForceOn(At(2024, 10, 27, 3)), DWORD{TIME_ZONE_ID_STANDARD});
  EXPECT_EQ(TimeInForceOn(At(2024, 12, 31, 23)), DWORD{TIME_ZONE_ID_STANDARD});
}

TEST(TimeZone, OfTheSouthHasDaylightTimeOverTheNewYear) {
  SetZone(SouthernZone());
  EXPECT_EQ(TimeInForceOn(At(2023, 12, 31, 23)), DWORD{TIME_ZONE_ID_DAYLIGHT});
  EXPECT_EQ(TimeInForceOn(At(2024, 1, 1)), DWORD{TIME_ZONE_ID_DAYLIGHT});
  EXPECT_EQ(TimeInForceOn(At(2024, 4, 7, 1, 59, 50)), DWORD{TIME_ZONE_ID_DAYLIGHT});
  EXPECT_EQ(TimeInForceOn(At(2024, 4, 7, 3)), DWORD{TIME_ZONE_ID_STANDARD});
  EXPECT_EQ(TimeInForceOn(At(2024, 10, 6, 1, 59, 50)), DWORD{TIME_ZONE_ID_STANDARD});
  EXPECT_EQ(TimeInForceOn(At(2024, 10, 6, 3)), DWORD{TIME_ZONE_ID_DAYLIGHT});
}

TEST(TimeZone, LeavesAnHourOutWhenDaylightTimeBegins) {
  SetZone(NorthernZone());
  EXPECT_EQ(AfterTheMinute(At(2024, 3, 31, 1, 59)), "2024-03-31 03:00");
  SetZone(SouthernZone());
  EXPECT_EQ(AfterTheMinute(At(2024, 10, 6, 1, 59)), "2024-10-06 03:00");
}

TEST(TimeZone, RepeatsAnHourWhenDaylightTimeEnds) {
  SetZone(NorthernZone());
  SetClock(At(2024, 10, 27, 1));  // daylight time: the hour that follows is the first of the two
  EXPECT_EQ(AfterTheMinute(At(2024, 10, 27, 2, 59)), "2024-10-27 02:00");
  EXPECT_EQ(TimeInForce(), DWORD{TIME_ZONE_ID_STANDARD});
  EXPECT_EQ(AfterTheMinute(At(2024, 10, 27, 2, 59)), "2024-10-27 03:00");
}

TEST(TimeZone, TakesDatedChangesOnce) {
  SetZone(Zone(-60, At(2024, 5, 10, 2), At(2024, 9, 20, 3)));
  EXPECT_EQ(TimeInForceOn(At(2023, 7, 1)), DWORD{TIME_ZONE_ID_STANDARD});
  EXPECT_EQ(AfterTheMinute(At(2024, 5, 10, 1, 59)), "2024-05-10 03:00");
  EXPECT_EQ(TimeInForceOn(At(2024, 9, 20, 1)), DWORD{TIME_ZONE_ID_DAYLIGHT});
  EXPECT_EQ(TimeInForceOn(At(2024, 9, 20, 4)), DWORD{TIME_ZONE_ID_STANDARD});
  EXPECT_EQ(TimeInForceOn(At(2025, 7, 1)), DWORD{TIME_ZONE_ID_STANDARD});
}

TEST(TimeZone, NeedsBothChangesOrNone) {
  ExpectRefused(Zone(0, Yearly(3, 5, 0, 2)));
  ExpectRefused(Zone(0, {}, Yearly(10, 5, 0, 3)));
}

TEST(TimeZone, RefusesDatesThatAreNone) {
  const SYSTEMTIME good = Yearly(10, 5, 0, 3);
  for (const SYSTEMTIME& bad :
       {Yearly(13, 1, 0, 2), Yearly(3, 0, 0, 2), Yearly(3, 6, 0, 2), Yearly(3, 5, 7, 2), Yearly(3, 5, 0, 24),
        Yearly(3, 5, 0, 2, 60), At(0, 3, 5, 2, 0, 60), At(0, 3, 5, 2, 0, 0, 1000), At(2023, 2, 29, 2),
        At(2024, 3, 32, 2), At(1600, 3, 1, 2), At(2024, 3, 0, 2)}) {
    ExpectRefused(Zone(0, bad, good));
    ExpectRefused(Zone(0, good, bad));
  }
}

TEST(TimeZone, StaysAsItIsWhenOneIsRefused) {
  SetZone(Zone(-345));
  ExpectRefused(Zone(0, Yearly(13, 1, 0, 2), Yearly(10, 5, 0, 3)));
  TIME_ZONE_INFORMATION zone = {};
  GetTimeZoneInformation(&zone);
  EXPECT_EQ(zone.Bias, -345);
}

TEST(LocalFileTime, IsMovedByTheBiasInForceNow) {
  SetZone(NorthernZone());
  const FILETIME winter = FileTime(133500000000000000);  // January 2024
  FILETIME local = {};
  SetClock(At(2024, 1, 15));
  ASSERT_TRUE(FileTimeToLocalFileTime(&winter, &local));
  EXPECT_EQ(Ticks(local) - Ticks(winter), kTicksPerHour);
  SetClock(At(2024, 7, 15));
  ASSERT_TRUE(FileTimeToLocalFileTime(&winter, &local));
  EXPECT_EQ(Ticks(local) - Ticks(winter), 2 * kTicksPerHour);
}

TEST(LocalFileTime, KeepsItsLastTick) {
  SetZone(Zone(210));
  const FILETIME time = FileTime(133500000000000001);
  FILETIME local = {};
  ASSERT_TRUE(FileTimeToLocalFileTime(&time, &local));
  EXPECT_EQ(Ticks(time) - Ticks(local), 210 * kTicksPerHour / 60);
}

}  // namespace
}  // namespace platform_test
