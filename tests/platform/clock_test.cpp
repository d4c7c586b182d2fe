// The clock and calendar time.
#include <gtest/gtest.h>
#include <windows.h>

#include <array>
#include <cstring>
#include <random>
#include <vector>

#include "times.h"

namespace platform_test {
namespace {

constexpr std::uint64_t kTicksPerSecond = 10000000;
constexpr std::uint64_t kTicksPerHour = 3600 * kTicksPerSecond;
constexpr std::uint64_t kTicksPerMs = kTicksPerSecond / 1000;
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

TEST(FileTimes, ComeFromCalendarTimesBackAgain) {
  for (const SYSTEMTIME& time : {At(1601, 1, 1), At(1899, 12, 30), At(2000, 2, 29, 23, 59, 59, 999), At(2024, 1, 31, 9),
                                 At(30827, 12, 31, 23, 59, 59, 999)}) {
    FILETIME file = {};
    ASSERT_TRUE(SystemTimeToFileTime(&time, &file)) << Text(time);
    EXPECT_EQ(Ticks(file),
              static_cast<std::uint64_t>(Seconds(time)) * kTicksPerSecond + time.wMilliseconds * kTicksPerMs);
  }
}

TEST(FileTimes, DoNotDependOnTheDayOfTheWeekGiven) {
  SYSTEMTIME time = At(2024, 1, 31);
  for (const WORD day : {WORD{0}, WORD{6}, WORD{7}, WORD{65535}}) {
    time.wDayOfWeek = day;
    FILETIME file = {};
    EXPECT_TRUE(SystemTimeToFileTime(&time, &file));
    EXPECT_EQ(Ticks(file), static_cast<std::uint64_t>(Seconds(time)) * kTicksPerSecond);
  }
}

TEST(FileTimes, AreNotMadeOfWhatIsNoDateOrTime) {
  for (const SYSTEMTIME& time :
       {At(2023, 2, 29), At(1900, 2, 29), At(2024, 2, 30), At(2024, 0, 1), At(2024, 13, 1), At(2024, 1, 0),
        At(2024, 4, 31), At(2024, 1, 32), At(1600, 12, 31), At(0, 1, 1), At(30828, 1, 1), At(65535, 1, 1),
        At(2024, 1, 31, 24), At(2024, 1, 31, 12, 60), At(2024, 1, 31, 12, 0, 60), At(2024, 1, 31, 12, 0, 0, 1000)}) {
    FILETIME file = FileTime(77);
    SetLastError(ERROR_SUCCESS);
    EXPECT_FALSE(SystemTimeToFileTime(&time, &file)) << Text(time);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER)) << Text(time);
    EXPECT_EQ(Ticks(file), 77u);
  }
}

/// The calendar day by day: how many days are before each year, and before each month of a year.
struct DayTable {
  DayTable() {
    std::uint64_t days = 0;
    for (int year = 1601; year <= 30828; days += IsLeap(year++) ? 366 : 365) before_year.push_back(days);
  }
  static bool IsLeap(int year) { return year % 400 == 0 || (year % 4 == 0 && year % 100 != 0); }
  static int Length(int year, int month) {
    constexpr std::array<int, 12> kLengths = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return kLengths[static_cast<std::size_t>(month - 1)] + (month == 2 && IsLeap(year) ? 1 : 0);
  }
  std::uint64_t Days(int year, int month, int day) const {
    std::uint64_t days = before_year[static_cast<std::size_t>(year - 1601)] + static_cast<std::uint64_t>(day - 1);
    for (int before = 1; before < month; ++before) days += static_cast<std::uint64_t>(Length(year, before));
    return days;
  }
  std::vector<std::uint64_t> before_year;
};

TEST(FileTimes, OfAMillionDatesAreThoseOfACalendarAndTurnBack) {
  const DayTable table;
  std::mt19937 random(20240131);
  for (int round = 0; round < 1000000; ++round) {
    const int year = 1601 + static_cast<int>(random() % (round % 2 == 0 ? 500 : 29227));
    const int month = 1 + static_cast<int>(random() % 12);
    const int day = 1 + static_cast<int>(random() % static_cast<unsigned>(DayTable::Length(year, month)));
    const std::uint32_t ms = random() % 86400000;
    SYSTEMTIME time = At(year, month, day, static_cast<int>(ms / 3600000), static_cast<int>(ms / 60000 % 60),
                         static_cast<int>(ms / 1000 % 60), static_cast<int>(ms % 1000));
    const std::uint64_t days = table.Days(year, month, day);
    time.wDayOfWeek = static_cast<WORD>((days + 1) % 7);
    FILETIME file = {};
    SYSTEMTIME back = {};
    ASSERT_TRUE(SystemTimeToFileTime(&time, &file)) << Text(time);
    ASSERT_EQ(Ticks(file), (days * 86400000 + ms) * kTicksPerMs) << Text(time);
    ASSERT_TRUE(FileTimeToSystemTime(&file, &back));
    ASSERT_EQ(std::memcmp(&back, &time, sizeof back), 0) << Text(time) << " came back as " << Text(back);
  }
}

}  // namespace
}  // namespace platform_test
