// The virtual calendar against this machine's own.
#include <gtest/gtest.h>
#include <windows.h>

#include <ctime>
#include <random>

#include "common/system/calendar.h"
#include "times.h"

namespace platform_test {
namespace {

constexpr std::int64_t kSecondsTo1970 = 11644473600;
constexpr std::int64_t kTicksPerSecond = 10000000;

TEST(Calendar, AgreesWithTheMachinesLibraryOnAnyMoment) {
  std::mt19937_64 random(20240131);
  for (int round = 0; round < 200000; ++round) {
    const auto ticks = static_cast<std::int64_t>(random() >> 1);
    const std::time_t seconds = ticks / kTicksPerSecond - kSecondsTo1970;
    std::tm expected = {};
    gmtime_r(&seconds, &expected);
    const SYSTEMTIME time = host::CalendarOfMs(ticks / host::kTicksPerMs);
    ASSERT_EQ(Text(time), Text(At(expected.tm_year + 1900, expected.tm_mon + 1, expected.tm_mday, expected.tm_hour,
                                  expected.tm_min, expected.tm_sec)));
    ASSERT_EQ(time.wDayOfWeek, expected.tm_wday);
    ASSERT_EQ(time.wMilliseconds, ticks / host::kTicksPerMs % 1000);
    if (host::IsCalendarTime(time)) {
      ASSERT_EQ(host::MsOfCalendar(time), ticks / host::kTicksPerMs);
    }
  }
}

}  // namespace
}  // namespace platform_test
