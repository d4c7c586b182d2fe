// The clock and calendar time.
#include <gtest/gtest.h>
#include <windows.h>

#include "times.h"

namespace platform_test {
namespace {

constexpr std::uint64_t kTicksPerSecond = 10000000;
constexpr std::uint64_t kTicksPerHour = 3600 * kTicksPerSecond;
constexpr std::int64_t kPatience = 60;  // seconds that a busy machine may take for a test

class ClockTest : public testing::Test {
 protected:
  ClockTest() {
    const TIME_ZONE_INFORMATION zone = Zone(0);
    EXPECT_TRUE(SetTimeZoneInformation(&zone));
  }
};

void ExpectSetTo(const SYSTEMTIME& time) {
  EXPECT_TRUE(SetLocalTime(&time)) << Text(time);
  const std::int64_t later = Seconds(Now()) - Seconds(time);
  EXPECT_TRUE(later >= 0 && later < kPatience) << Text(time) << " reads " << Text(Now());
}

void ExpectRefused(const SYSTEMTIME& time) {
  SetLastError(ERROR_SUCCESS);
  EXPECT_FALSE(SetLocalTime(&time)) << Text(time);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER)) << Text(time);
}

TEST_F(ClockTest, ReadsAsItWasSetAndGoesOn) {
  for (const int year : {1980, 1999, 2000, 2024, 2038, 2100}) ExpectSetTo(At(year, 7, 5, 23, 59, 50));
  ExpectSetTo(At(2024, 2, 29, 0, 0, 0));
}

TEST_F(ClockTest, GoesOverMidnightIntoTheNextYear) {
  const SYSTEMTIME last = At(2023, 12, 31, 23, 59, 59, 990);
  ASSERT_TRUE(SetLocalTime(&last));
  while (Now().wYear == 2023) {
  }
  EXPECT_EQ(Text(Now()).substr(0, 16), "2024-01-01 00:00");
}

TEST_F(ClockTest, TellsTheDayOfTheWeekWhateverOneWasGiven) {
  SYSTEMTIME wednesday = At(2024, 1, 31, 12);
  wednesday.wDayOfWeek = 6;
  ASSERT_TRUE(SetLocalTime(&wednesday));
  EXPECT_EQ(Now().wDayOfWeek, 3);
}

TEST_F(ClockTest, KeepsMilliseconds) {
  const SYSTEMTIME time = At(2024, 1, 31, 12, 0, 0, 250);
  ASSERT_TRUE(SetLocalTime(&time));
  const SYSTEMTIME now = Now();
  EXPECT_TRUE(now.wSecond != 0 || now.wMilliseconds >= 250);
}

TEST_F(ClockTest, RefusesWhatIsNoDate) {
  for (const SYSTEMTIME& time :
       {At(2023, 2, 29), At(1900, 2, 29), At(2024, 0, 1), At(2024, 13, 1), At(2024, 1, 0), At(2024, 4, 31),
        At(2024, 1, 32), At(1600, 12, 31), At(0, 1, 1), At(30828, 1, 1), At(65535, 1, 1)}) {
    ExpectRefused(time);
  }
}

TEST_F(ClockTest, RefusesWhatIsNoTimeOfDay) {
  for (const SYSTEMTIME& time : {At(2024, 1, 31, 24), At(2024, 1, 31, 12, 60), At(2024, 1, 31, 12, 0, 60),
                                 At(2024, 1, 31, 12, 0, 0, 1000), At(2024, 1, 31, 65535)}) {
    ExpectRefused(time);
  }
}

TEST_F(ClockTest, StaysAsItIsWhenADateIsRefused) {
  ExpectSetTo(At(2010, 5, 6, 7, 8, 9));
  ExpectRefused(At(2023, 2, 29));
  EXPECT_EQ(Text(Now()).substr(0, 13), "2010-05-06 07");
}

TEST(FileTimes, BeginIn1601) {
  const FILETIME zero = FileTime(0);
  SYSTEMTIME calendar = {};
  ASSERT_TRUE(FileTimeToSystemTime(&zero, &calendar));
  EXPECT_EQ(Text(calendar), "1601-01-01 00:00:00");
  EXPECT_EQ(calendar.wDayOfWeek, 1);
}

TEST(FileTimes, AreCutToMilliseconds) {
  const FILETIME time = FileTime(kTicksPerSecond * 61 + 1239999);
  SYSTEMTIME calendar = {};
  ASSERT_TRUE(FileTimeToSystemTime(&time, &calendar));
  EXPECT_EQ(Text(calendar), "1601-01-01 00:01:01");
  EXPECT_EQ(calendar.wMilliseconds, 123);
}

TEST(FileTimes, KnowEveryDayOfFiveHundredYearsAndTheWeek) {
  SYSTEMTIME calendar = {};
  std::uint64_t days = 0;
  for (; calendar.wYear < 2101; ++days) {
    const FILETIME time = FileTime(days * 24 * kTicksPerHour);
    ASSERT_TRUE(FileTimeToSystemTime(&time, &calendar));
    ASSERT_EQ(Seconds(calendar), static_cast<std::int64_t>(days) * 86400) << Text(calendar);
    ASSERT_EQ(calendar.wDayOfWeek, (days + 1) % 7);
  }
}

TEST(FileTimes, ReachToTheEndOfTheCalendar) {
  const SYSTEMTIME last = At(30827, 12, 31, 23, 59, 59);
  const FILETIME time = FileTime(static_cast<std::uint64_t>(Seconds(last)) * kTicksPerSecond);
  SYSTEMTIME calendar = {};
  ASSERT_TRUE(FileTimeToSystemTime(&time, &calendar));
  EXPECT_EQ(Text(calendar), Text(last));
}

TEST(FileTimes, WithTheHighestBitSetAreRefused) {
  const FILETIME negative = FileTime(std::uint64_t{1} << 63);
  SYSTEMTIME calendar = {};
  SetLastError(ERROR_SUCCESS);
  EXPECT_FALSE(FileTimeToSystemTime(&negative, &calendar));
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}

}  // namespace
}  // namespace platform_test
