// ST_CLK and GT_CLK, and the table of time zones.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "commands/services/time_zones.h"
#include "unit/services/controller_service.h"

namespace qxtest {
namespace {

using qxcm::TimeZone;
using qxcm::TimeZoneTable;

/// An instrument whose clock stands at 2024-01-31 09:30:05 in zone 110.
class ClockCommands : public testing::Test {
 protected:
  ClockCommands() {
    EXPECT_EQ(service_.Answer("ST_CLK,TMZ=110,DTE=20240131,TIM=093005"), "ok");
    service_.ForgetPlatformCalls();
    service_.manager.notify_list().Register(window_.handle(), kNotice);
  }
  std::string Clock() { return service_.Answer("GT_CLK,DTE,TIM,TMZ"); }
  static std::string At(const std::string& date, const std::string& time, const std::string& zone) {
    return "CLK,DTE=" + date + ",TIM=" + time + ",TMZ=" + zone;
  }
  /// The notices until now; ends with one of its own.
  std::vector<WPARAM> Notices() {
    service_.Answer("ST_HAN,HAN=1");
    std::vector<WPARAM> notices;
    WaitUntil([&] {
      notices.clear();
      for (const SeenMessage& seen : window_.seen()) notices.push_back(seen.wparam);
      return !notices.empty() && notices.back() == 513;
    });
    return notices;
  }
  void DeleteZoneValue(const std::string& name) {
    EXPECT_EQ(service_.Answer("DL_REG,KEY=HKLM/Time Zones/Tokyo Standard Time,NAM=" + name), "ok");
  }

  ControllerService service_;
  TestWindow window_;
};

using ST_CLK = ClockCommands;
using GT_CLK = ClockCommands;

// ---- ST_CLK

TEST_F(ST_CLK, SetsZoneDateAndTime) {
  EXPECT_EQ(service_.Answer("ST_CLK,TIM=235959,DTE=20200229,TMZ=235"), "ok");
  EXPECT_EQ(Clock(), At("20200229", "235959", "235"));
  EXPECT_EQ(Notices(), (std::vector<WPARAM>{1793, 1794, 513}));
}

TEST_F(ST_CLK, KeepsTheTimeOfDayWithADateAlone) {
  EXPECT_EQ(service_.Answer("ST_CLK,DTE=20231224"), "ok");
  EXPECT_EQ(Clock(), At("20231224", "093005", "110"));
  EXPECT_EQ(Notices(), (std::vector<WPARAM>{1794, 513}));
}

TEST_F(ST_CLK, KeepsTheDateWithATimeAlone) {
  EXPECT_EQ(service_.Answer("ST_CLK,TIM=000001"), "ok");
  EXPECT_EQ(Clock(), At("20240131", "000001", "110"));
}

TEST_F(ST_CLK, MovesLocalTimeWithAZoneAlone) {
  EXPECT_EQ(service_.Answer("ST_CLK,TMZ=235"), "ok");
  EXPECT_EQ(Clock(), At("20240131", "173005", "235"));
  EXPECT_EQ(Notices(), (std::vector<WPARAM>{1793, 513}));
}

TEST_F(ST_CLK, TakesTheTimeOfBeforeTheZoneForWhatIsNotSent) {
  EXPECT_EQ(service_.Answer("ST_CLK,TMZ=235,DTE=20240201"), "ok");
  EXPECT_EQ(Clock(), At("20240201", "093005", "235"));
}

TEST_F(ST_CLK, ChangesNothingForAZoneThatIsNotInTheTable) {
  for (const char* zone : {"7", "-1", "301", "5", "99999999999"}) {
    EXPECT_EQ(service_.Answer(std::string("ST_CLK,DTE=20200101,TIM=010101,TMZ=") + zone), "ER_PRM") << zone;
  }
  EXPECT_EQ(Clock(), At("20240131", "093005", "110"));
  EXPECT_EQ(Notices(), (std::vector<WPARAM>{513}));
}

TEST_F(ST_CLK, TakesAZoneWithoutANumberForZero) {
  EXPECT_EQ(service_.Answer("ST_CLK,TMZ"), "ok");
  EXPECT_EQ(service_.Answer("GT_CLK,TMZ"), "CLK,TMZ=0");
}

TEST_F(ST_CLK, LeavesTheNewZoneInForceWhenTheDateIsBad) {
  for (const char* fields : {"DTE=2024013x", "DTE=99999999999", "TIM=0x", "DTE=20240101,TIM=-1"}) {
    EXPECT_EQ(service_.Answer(std::string("ST_CLK,TMZ=235,") + fields), "ER_PRM") << fields;
    EXPECT_EQ(Clock(), At("20240131", "173005", "235")) << fields;
  }
}

TEST_F(ST_CLK, RefusesADayThatDoesNotExist) {
  for (const char* fields : {"DTE=20230229", "DTE=20240100", "TIM=250000", "TIM=006000", "DTE=20241301"}) {
    EXPECT_EQ(service_.Answer(std::string("ST_CLK,") + fields), "ER_PRM") << fields;
  }
  EXPECT_EQ(Clock(), At("20240131", "093005", "110"));
  EXPECT_EQ(Notices(), (std::vector<WPARAM>{513}));
}

TEST_F(ST_CLK, DoesNothingWithoutItsKeys) {
  for (const char* command : {"ST_CLK", "ST_CLK,dte=20200101", "ST_CLK,XYZ=1"}) {
    EXPECT_EQ(service_.Answer(command), "ok") << command;
  }
  EXPECT_EQ(service_.PlatformCalls({"SetLocalTime", "SetTimeZoneInformation"}), Texts{});
  EXPECT_EQ(Notices(), (std::vector<WPARAM>{513}));
}

TEST_F(ST_CLK, SetsZoneBeforeTime) {
  service_.Answer("ST_CLK,TMZ=235,TIM=010203");
  const Texts calls = service_.PlatformCalls({"SetLocalTime", "SetTimeZoneInformation"});
  ASSERT_EQ(calls.size(), 2u);
  EXPECT_EQ(calls[0].substr(0, 22), "SetTimeZoneInformation");
  EXPECT_EQ(calls[1].substr(0, 12), "SetLocalTime");
}

TEST_F(ST_CLK, FailsWithoutANoticeWherethePlatformRefusesTheZone) {
  const Failing failing("SetTimeZoneInformation", ERROR_INVALID_PARAMETER);
  EXPECT_EQ(service_.Answer("ST_CLK,TMZ=235,TIM=010203"), "ER_PRM");
  EXPECT_EQ(Clock(), At("20240131", "093005", "110"));
  EXPECT_EQ(Notices(), (std::vector<WPARAM>{513}));
}

TEST_F(ST_CLK, FailsWithoutANoticeWhereThePlatformRefusesTheTime) {
  const Failing failing("SetLocalTime", ERROR_INVALID_PARAMETER);
  EXPECT_EQ(service_.Answer("ST_CLK,TIM=010203"), "ER_PRM");
  EXPECT_EQ(Notices(), (std::vector<WPARAM>{513}));
}

TEST_F(ST_CLK, RefusesAZoneWhoseRulesAreMissing) {
  DeleteZoneValue("TZI");
  EXPECT_EQ(service_.Answer("ST_CLK,TMZ=235"), "ER_PRM");
  EXPECT_EQ(service_.PlatformCalls({"SetTimeZoneInformation"}), Texts{});
  EXPECT_EQ(service_.Answer("DL_REG,KEY=HKLM/Time Zones/Tokyo Standard Time"), "ok");
  EXPECT_EQ(service_.Answer("ST_CLK,TMZ=235"), "ER_PRM");
}

TEST_F(ST_CLK, SetsAZoneWithoutNames) {
  DeleteZoneValue("Std");
  DeleteZoneValue("Dlt");
  EXPECT_EQ(service_.Answer("ST_CLK,TMZ=235"), "ok");
  TIME_ZONE_INFORMATION zone = {};
  GetTimeZoneInformation(&zone);
  EXPECT_EQ(zone.Bias, -540);
  EXPECT_EQ(zone.StandardName[0], 0);
  EXPECT_EQ(zone.DaylightName[0], 0);
}

TEST_F(ST_CLK, GivesThePlatformWhatTheRegistryHolds) {
  service_.Answer("ST_CLK,TMZ=110");
  TIME_ZONE_INFORMATION zone = {};
  GetTimeZoneInformation(&zone);
  EXPECT_EQ(zone.Bias, -60);
  EXPECT_EQ(zone.StandardBias, 0);
  EXPECT_EQ(zone.DaylightBias, -60);
  EXPECT_EQ(std::u16string(zone.StandardName), u"W. Europe Standard Time");
  EXPECT_EQ(std::u16string(zone.DaylightName), u"W. Europe Daylight Time");
  EXPECT_EQ(zone.StandardDate.wMonth, 10);
  EXPECT_EQ(zone.StandardDate.wDay, 5);
  EXPECT_EQ(zone.StandardDate.wHour, 3);
  EXPECT_EQ(zone.DaylightDate.wMonth, 3);
}

// ---- GT_CLK

TEST_F(GT_CLK, AnswersInItsOwnOrder) {
  EXPECT_EQ(service_.Answer("GT_CLK,TMZ,TIM,DTE"), At("20240131", "093005", "110"));
  EXPECT_EQ(service_.Answer("GT_CLK,TIM=1,DTE=2"), "CLK,DTE=20240131,TIM=093005");
}

TEST_F(GT_CLK, AnswersTheWordAloneWithoutItsKeys) { EXPECT_EQ(service_.Answer("GT_CLK"), "CLK"); }

TEST_F(GT_CLK, LooksForTheZoneOnlyWhenAsked) {
  service_.Answer("GT_CLK,DTE,TIM");
  EXPECT_EQ(service_.PlatformCalls({"RegOpenKeyExW"}), Texts{});
}

TEST_F(GT_CLK, ReportsEveryZoneUnderItsOwnNumber) {
  for (const TimeZone& zone : TimeZoneTable()) {
    const std::string number = std::to_string(zone.index);
    EXPECT_EQ(service_.Answer("ST_CLK,TMZ=" + number), "ok");
    EXPECT_EQ(service_.Answer("GT_CLK,TMZ"), "CLK,TMZ=" + number);
  }
}

TEST_F(GT_CLK, ReportsTheLowerNumberOfTwoZonesAlike) {
  service_.Answer("ST_CLK,TMZ=235");
  EXPECT_EQ(service_.Answer("WR_REG,KEY=HKLM/Time Zones/Korea Standard Time,NAM=Std,TYP=STR,VAL=Tokyo Standard Time"),
            "ok");
  EXPECT_EQ(service_.Answer("GT_CLK,TMZ"), "CLK,TMZ=230");
}

TEST_F(GT_CLK, ComparesBiasesAndTheStandardNameOnly) {
  TIME_ZONE_INFORMATION zone = {};
  GetTimeZoneInformation(&zone);
  zone.StandardDate = {};
  zone.DaylightDate = {};
  zone.DaylightName[0] = u'X';
  SetTimeZoneInformation(&zone);
  EXPECT_EQ(service_.Answer("GT_CLK,TMZ"), "CLK,TMZ=110");
}

TEST_F(GT_CLK, ReportsNoZoneWhenNoneMatches) {
  TIME_ZONE_INFORMATION zone = {};
  GetTimeZoneInformation(&zone);
  zone.StandardName[3] = u'!';
  SetTimeZoneInformation(&zone);
  EXPECT_EQ(service_.Answer("GT_CLK,TMZ,TIM"), "CLK,TIM=093005,TMZ=");
}

TEST_F(GT_CLK, ComparesTheWholeName) {
  TIME_ZONE_INFORMATION zone = {};
  GetTimeZoneInformation(&zone);
  zone.StandardName[9] = 0;
  SetTimeZoneInformation(&zone);
  EXPECT_EQ(service_.Answer("GT_CLK,TMZ"), "CLK,TMZ=");
}

TEST_F(GT_CLK, SkipsAZoneThatCannotBeRead) {
  service_.Answer("ST_CLK,TMZ=235");
  DeleteZoneValue("Std");
  EXPECT_EQ(service_.Answer("GT_CLK,TMZ"), "CLK,TMZ=");
}

TEST_F(GT_CLK, IsRightToTheSecondAroundTheChangesOfDaylightTime) {
  service_.Answer("ST_CLK,TMZ=110,DTE=20240331,TIM=015959");
  EXPECT_EQ(service_.Answer("GT_CLK,TIM"), "CLK,TIM=015959");
  EXPECT_EQ(service_.Answer("ST_CLK,TIM=030000"), "ok");
  EXPECT_EQ(service_.Answer("ST_CLK,TMZ=90"), "ok");  // no daylight time there, and no bias
  EXPECT_EQ(service_.Answer("GT_CLK,TIM"), "CLK,TIM=010000");
}

TEST_F(GT_CLK, IsTheTimeThatFilesAreWrittenAt) {
  service_.Answer("CR_FIL,PTH=/new");
  const std::string made = service_.Answer("GT_FLS,PTH=/new");
  EXPECT_EQ(made.substr(made.find(",DTE=")), ",DTE=20240131,TIM=093005");
  service_.Open("/new");
  service_.Answer("ST_CLK,TIM=100000");
  service_.Answer("WR_FIL,HAN=1,VAL=x");
  const std::string written = service_.Answer("GT_FLS,PTH=/new");
  EXPECT_EQ(written.substr(written.find(",DTE=")), ",DTE=20240131,TIM=100000");
  service_.Answer("MK_FDR,PTH=/folder");
  const std::string folder = service_.Answer("GT_FLS,PTH=/folder");
  EXPECT_EQ(folder.substr(folder.find(",DTE=")), ",DTE=20240131,TIM=100000");
}

// ---- The table

TEST(TimeZoneTable, HoldsSeventyFiveZonesInAscendingOrder) {
  EXPECT_EQ(TimeZoneTable::end() - TimeZoneTable::begin(), 75);
  for (const TimeZone* zone = TimeZoneTable::begin(); zone + 1 != TimeZoneTable::end(); ++zone) {
    EXPECT_LT(zone->index, zone[1].index);
  }
}

TEST(TimeZoneTable, FindsEveryZoneAndNoOther) {
  for (const TimeZone& zone : TimeZoneTable()) EXPECT_EQ(TimeZoneTable::Find(zone.index), &zone);
  int found = 0;
  for (int index = -10; index < 400; ++index) found += TimeZoneTable::Find(index) != nullptr ? 1 : 0;
  EXPECT_EQ(found, 75);
}

TEST(TimeZoneTable, NamesTheZones) {
  EXPECT_EQ(std::u16string(TimeZoneTable::Find(0)->name), u"Dateline Standard Time");
  EXPECT_EQ(std::u16string(TimeZoneTable::Find(13)->name), u"Mexico Standard Time 2");
  EXPECT_EQ(std::u16string(TimeZoneTable::Find(300)->name), u"Tonga Standard Time");
}

}  // namespace
}  // namespace qxtest
