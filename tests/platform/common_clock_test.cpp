// The virtual clock beyond the platform's calls: it can stand still, and it leaves the machine's clock alone.
#include <gtest/gtest.h>
#include <windows.h>

#include <chrono>
#include <ctime>

#include "common/system/calendar.h"
#include "common/system/clock.h"
#include "times.h"

namespace platform_test {
namespace {

constexpr std::int64_t kSecondsTo1970 = 11644473600;
constexpr std::int64_t kTicksPerSecond = 10000000;

/// A clock in UTC that follows the machine's before and after.
class VirtualClock : public testing::Test {
 protected:
  VirtualClock() { Restore(); }
  ~VirtualClock() override { Restore(); }

  static void Restore() {
    host::RunClock(true);
    host::FollowMachineClock();
    const TIME_ZONE_INFORMATION utc = {};
    host::SetTimeZoneInformation(&utc);
  }
};

std::int64_t MachineSeconds() { return std::time(nullptr) + kSecondsTo1970; }

TEST_F(VirtualClock, StartsWithTheMachinesTimeInUtc) {
  EXPECT_NEAR(static_cast<double>(Seconds(Now())), static_cast<double>(MachineSeconds()), 60);
  TIME_ZONE_INFORMATION zone = NorthernZone();
  EXPECT_EQ(GetTimeZoneInformation(&zone), TIME_ZONE_ID_UNKNOWN);
  EXPECT_EQ(zone.Bias, 0);
}

TEST_F(VirtualClock, LeavesTheMachinesClockAlone) {
  const SYSTEMTIME past = At(1985, 1, 1);
  ASSERT_TRUE(SetLocalTime(&past));
  EXPECT_GT(MachineSeconds(), Seconds(At(2024, 1, 1)));
  host::FollowMachineClock();
  EXPECT_NEAR(static_cast<double>(Seconds(Now())), static_cast<double>(MachineSeconds()), 60);
}

TEST_F(VirtualClock, StandsStillWhereItWasStopped) {
  host::RunClock(false);
  EXPECT_FALSE(host::ClockRuns());
  const std::int64_t stopped = host::ClockTicks();
  const auto start = std::chrono::steady_clock::now();
  while (std::chrono::steady_clock::now() - start < std::chrono::milliseconds(2)) {
  }
  EXPECT_EQ(host::ClockTicks(), stopped);
}

TEST_F(VirtualClock, CanBeSetWhileItStandsStill) {
  host::RunClock(false);
  const SYSTEMTIME time = At(2024, 1, 31, 9, 30, 5, 250);
  ASSERT_TRUE(SetLocalTime(&time));
  const SYSTEMTIME now = Now();
  EXPECT_EQ(Text(now), "2024-01-31 09:30:05");
  EXPECT_EQ(now.wMilliseconds, 250);
}

TEST_F(VirtualClock, GoesOnFromWhereItStood) {
  host::RunClock(false);
  const SYSTEMTIME time = At(2024, 1, 31, 9, 30);
  ASSERT_TRUE(SetLocalTime(&time));
  const std::int64_t stopped = host::ClockTicks();
  host::RunClock(true);
  while (host::ClockTicks() == stopped) {
  }
  EXPECT_LT(host::ClockTicks() - stopped, 60 * kTicksPerSecond);
}

TEST_F(VirtualClock, ChangesZoneWhileItStandsStill) {
  host::RunClock(false);
  const SYSTEMTIME time = At(2024, 7, 1, 12);
  ASSERT_TRUE(SetLocalTime(&time));
  const TIME_ZONE_INFORMATION zone = NorthernZone();
  ASSERT_TRUE(SetTimeZoneInformation(&zone));
  EXPECT_EQ(Text(Now()), "2024-07-01 14:00:00");
}

TEST_F(VirtualClock, ReachesFromOneEndOfTheCalendarToTheOther) {
  host::RunClock(false);
  for (const SYSTEMTIME& time : {At(1601, 1, 1), At(30827, 12, 31, 23, 59, 59, 999)}) {
    ASSERT_TRUE(SetLocalTime(&time));
    EXPECT_EQ(Text(Now()), Text(time));
  }
}

TEST_F(VirtualClock, RefusesAMomentBefore1601) {
  const TIME_ZONE_INFORMATION east = Zone(-60);
  ASSERT_TRUE(SetTimeZoneInformation(&east));
  const SYSTEMTIME first = At(1601, 1, 1, 0, 59, 59), next = At(1601, 1, 1, 1);
  EXPECT_FALSE(SetLocalTime(&first));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
  EXPECT_TRUE(SetLocalTime(&next));
}

TEST_F(VirtualClock, ReadsAsTheFirstMomentWhereTheZoneLeadsBeforeIt) {
  const SYSTEMTIME first = At(1601, 1, 1);
  host::RunClock(false);
  ASSERT_TRUE(SetLocalTime(&first));
  const TIME_ZONE_INFORMATION west = Zone(60);
  ASSERT_TRUE(SetTimeZoneInformation(&west));
  EXPECT_EQ(Text(Now()), "1601-01-01 00:00:00");
}

TEST_F(VirtualClock, TakesAnyBias) {
  host::RunClock(false);
  const SYSTEMTIME time = At(2024, 1, 31);
  for (const LONG bias : {INT32_MIN, INT32_MAX}) {
    Restore();
    ASSERT_TRUE(SetLocalTime(&time));
    const TIME_ZONE_INFORMATION zone = Zone(bias, Yearly(3, 5, 0, 2), Yearly(10, 5, 0, 3));
    EXPECT_TRUE(SetTimeZoneInformation(&zone));
    EXPECT_EQ(Now().wYear, bias < 0 ? 6107 : 1601);
  }
}

TEST_F(VirtualClock, RefusesNull) {
  EXPECT_FALSE(SetLocalTime(nullptr));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
  EXPECT_FALSE(SetTimeZoneInformation(nullptr));
  EXPECT_EQ(GetTimeZoneInformation(nullptr), TIME_ZONE_ID_INVALID);
  FILETIME file = {};
  SYSTEMTIME calendar = {};
  EXPECT_FALSE(FileTimeToSystemTime(nullptr, &calendar));
  EXPECT_FALSE(FileTimeToSystemTime(&file, nullptr));
  EXPECT_FALSE(SystemTimeToFileTime(nullptr, &file));
  EXPECT_FALSE(SystemTimeToFileTime(&calendar, nullptr));
  EXPECT_FALSE(FileTimeToLocalFileTime(nullptr, &file));
  EXPECT_FALSE(FileTimeToLocalFileTime(&file, nullptr));
  GetLocalTime(nullptr);
}

TEST_F(VirtualClock, RefusesALocalFileTimeThatCannotBe) {
  FILETIME local = {};
  const TIME_ZONE_INFORMATION west = Zone(60), east = Zone(-60);
  ASSERT_TRUE(SetTimeZoneInformation(&west));
  const FILETIME first = FileTime(35999999999), last = FileTime(INT64_MAX), negative = FileTime(UINT64_MAX);
  EXPECT_FALSE(FileTimeToLocalFileTime(&first, &local));
  EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_PARAMETER});
  ASSERT_TRUE(SetTimeZoneInformation(&east));
  EXPECT_FALSE(FileTimeToLocalFileTime(&last, &local));
  EXPECT_FALSE(FileTimeToLocalFileTime(&negative, &local));
}

TEST(Calendar, KnowsTheLengthOfEveryMonth) {
  for (int year = 1601; year <= 30827; ++year) {
    const bool leap = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
    ASSERT_EQ(host::DaysInMonth(year, 2), leap ? 29 : 28) << year;
    ASSERT_EQ(host::DaysInMonth(year, 12), 31) << year;
  }
  for (const int month : {4, 6, 9, 11}) EXPECT_EQ(host::DaysInMonth(2024, month), 30);
}

}  // namespace
}  // namespace platform_test
