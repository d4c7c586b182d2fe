// The zones a fresh instrument knows.
#include <gtest/gtest.h>
#include <windows.h>

#include <set>
#include <string>

#include "common/system/zone_rules.h"
#include "common/text/utf.h"
#include "instrument/time_zones.h"
#include "times.h"

namespace platform_test {
namespace {

using host::instrument::FindTimeZone;
using host::instrument::TimeZones;

TEST(TimeZoneTable, HasSeventyFiveZonesInAscendingOrder) {
  EXPECT_EQ(TimeZones().size(), 75u);
  std::set<std::string> keys;
  int last = -1;
  for (const auto& row : TimeZones()) {
    EXPECT_GT(row.index, last);
    last = row.index;
    EXPECT_TRUE(keys.insert(row.key).second) << row.key;
  }
  EXPECT_EQ(TimeZones().front().key, "Dateline Standard Time");
  EXPECT_EQ(last, 300);
}

TEST(TimeZoneTable, HasRulesThatTheClockTakes) {
  int with_daylight_time = 0;
  for (const auto& row : TimeZones()) {
    EXPECT_TRUE(host::IsZone(row.rules)) << row.key;
    with_daylight_time += row.rules.DaylightDate.wMonth != 0 ? 1 : 0;
  }
  EXPECT_EQ(with_daylight_time, 26);
}

TEST(TimeZoneTable, NamesBothTimes) {
  const auto mexico = FindTimeZone("Mexico Standard Time 2");
  ASSERT_TRUE(mexico);
  EXPECT_EQ(host::WideString(mexico->StandardName), TEXT("Mexico Standard Time 2"));
  EXPECT_EQ(host::WideString(mexico->DaylightName), TEXT("Mexico Daylight Time 2"));
}

TEST(TimeZoneTable, FindsAZoneByItsWholeKeyOnly) {
  EXPECT_FALSE(FindTimeZone(""));
  EXPECT_FALSE(FindTimeZone("Nepal"));
  EXPECT_FALSE(FindTimeZone("nepal standard time"));
  EXPECT_EQ(FindTimeZone("Nepal Standard Time")->Bias, -345);
}

/// Local time minus UTC in minutes, at noon UTC.
std::int64_t Lead(const std::string& key, const SYSTEMTIME& day) {
  const std::int64_t noon = Seconds(day) * 1000 + 43200000;
  return (host::LocalFromUtc(*FindTimeZone(key), noon) - noon) / 60000;
}

TEST(TimeZoneTable, GivesTheZonesTheirKnownTimes) {
  const SYSTEMTIME january = At(2024, 1, 15), july = At(2024, 7, 15);
  const struct {
    const char* key;
    int january, july;
  } known[] = {{"W. Europe Standard Time", 60, 120},       {"GMT Standard Time", 0, 60},
               {"Eastern Standard Time", -300, -240},      {"Tokyo Standard Time", 540, 540},
               {"New Zealand Standard Time", 780, 720},    {"Pacific SA Standard Time", -180, -240},
               {"Newfoundland Standard Time", -210, -150}, {"India Standard Time", 330, 330}};
  for (const auto& zone : known) {
    EXPECT_EQ(Lead(zone.key, january), zone.january) << zone.key;
    EXPECT_EQ(Lead(zone.key, july), zone.july) << zone.key;
  }
}

}  // namespace
}  // namespace platform_test
