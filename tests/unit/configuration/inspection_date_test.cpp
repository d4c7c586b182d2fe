// The date of the last inspection: its two functions against a calendar walked day by day, and over the wire.
#include "commands/instrument/inspection_date.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <string>
#include <vector>

#include "unit/configuration/configured_service.h"
#include "unit/valuetext/generator.h"

namespace qxtest {
namespace {

using qxcm::FormatInspectionDate;
using qxcm::ParseInspectionDate;
using IS_DTM = Configuration;

constexpr std::uint32_t kInspectionDate = 0xC20701;
constexpr int kFirstYear = 1601;
constexpr int kLastYear = 9999;
constexpr double kFirstDay = -109205;  // 1 January 1601

int DaysOf(int year, int month) {
  const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  const int days[] = {31, leap ? 29 : 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return month >= 1 && month <= 12 ? days[month - 1] : 0;
}

/// Every day from the first of January 1601 to the end of 9999, and where each month begins.
class Calendar {
 public:
  Calendar() {
    for (int year = kFirstYear; year <= kLastYear; ++year) {
      for (int month = 1; month <= 12; ++month) {
        begins_.push_back(static_cast<std::int64_t>(days_.size()));
        for (int day = 1; day <= DaysOf(year, month); ++day) days_.push_back(year * 10000 + month * 100 + day);
      }
    }
  }
  std::int64_t count() const { return static_cast<std::int64_t>(days_.size()); }
  /// As the number YYYYMMDD.
  int Day(std::int64_t number) const { return days_[static_cast<std::size_t>(number)]; }
  /// Of a day that exists.
  std::int64_t Number(int year, int month, int day) const {
    return begins_[static_cast<std::size_t>((year - kFirstYear) * 12 + month - 1)] + day - 1;
  }

 private:
  std::vector<int> days_;
  std::vector<std::int64_t> begins_;
};

struct Moment {
  int year, month, day, hour, minute, second;

  bool Exists() const {
    return year >= kFirstYear && year <= kLastYear && day >= 1 && day <= DaysOf(year, month) && hour < 24 &&
           minute < 60 && second < 60;
  }
  int SecondOfDay() const { return (hour * 60 + minute) * 60 + second; }
  std::string Text() const {
    char text[64];
    std::snprintf(text, sizeof text, "%04d%02d%02d%02d%02d%02d", year, month, day, hour, minute, second);
    return text;
  }
};

/// A moment within a year of the calendar's ends or in it, most of them real ones.
Moment AnyMoment(Generator& generator) {
  const auto up_to = [&](int last) { return static_cast<int>(generator.UpTo(static_cast<std::uint64_t>(last))); };
  return {1600 + up_to(8399), up_to(13), up_to(32), up_to(24), up_to(60), up_to(60)};
}

std::string TextOf(int day, std::int64_t second_of_day) {
  return Moment{day / 10000,
                day / 100 % 100,
                day % 100,
                static_cast<int>(second_of_day / 3600),
                static_cast<int>(second_of_day / 60 % 60),
                static_cast<int>(second_of_day % 60)}
      .Text();
}

// ---- the two functions

TEST(ParseInspectionDate, AgreesWithACalendarOnAMillionMoments) {
  const Calendar calendar;
  Generator generator(51);
  int real = 0;
  for (int i = 0; i < 1000000; ++i) {
    const Moment moment = AnyMoment(generator);
    const auto days = ParseInspectionDate(moment.Text());
    ASSERT_EQ(days.has_value(), moment.Exists()) << moment.Text();
    if (!days) continue;
    ++real;
    const auto number = static_cast<double>(calendar.Number(moment.year, moment.month, moment.day));
    ASSERT_EQ(*days, (number * 86400 + moment.SecondOfDay()) * (1.0 / 86400) + kFirstDay) << moment.Text();
    ASSERT_NEAR(*days, number + kFirstDay + moment.SecondOfDay() / 86400.0, 1e-9) << moment.Text();
  }
  EXPECT_GT(real, 700000);
}

TEST(FormatInspectionDate, AgreesWithACalendarOnAMillionMoments) {
  const Calendar calendar;
  Generator generator(52);
  for (int i = 0; i < 1000000; ++i) {
    const auto number = static_cast<std::int64_t>(generator.UpTo(static_cast<std::uint64_t>(calendar.count() - 1)));
    const auto second = static_cast<std::int64_t>(generator.UpTo(86399));
    const double days = static_cast<double>(number) + kFirstDay + static_cast<double>(second) / 86400;
    ASSERT_EQ(FormatInspectionDate(days), TextOf(calendar.Day(number), second)) << number << ' ' << second;
  }
}

TEST(FormatInspectionDate, GivesBackWhatWasParsed) {
  Generator generator(53);
  for (int i = 0; i < 300000; ++i) {
    const Moment moment = AnyMoment(generator);
    const auto days = ParseInspectionDate(moment.Text());
    if (!days) continue;
    ASSERT_EQ(FormatInspectionDate(*days), moment.Text());
  }
}

TEST(FormatInspectionDate, KnowsEveryDayOfTheCalendar) {
  const Calendar calendar;
  for (std::int64_t number = 0; number < calendar.count(); number += 7) {
    ASSERT_EQ(FormatInspectionDate(static_cast<double>(number) + kFirstDay), TextOf(calendar.Day(number), 0));
  }
}

TEST(ParseInspectionDate, CountsFromTheThirtiethOfDecember1899) {
  EXPECT_EQ(ParseInspectionDate("18991230"), 0.0);
  EXPECT_EQ(ParseInspectionDate("18991231"), 1.0);
  EXPECT_EQ(ParseInspectionDate("18991229120000"), -0.5);
  EXPECT_EQ(ParseInspectionDate("20240131"), 45322.0);
  EXPECT_EQ(ParseInspectionDate("16010101"), kFirstDay);
  EXPECT_EQ(ParseInspectionDate("99991231"), 2958465.0);
}

TEST(ParseInspectionDate, TakesADateAloneForItsMidnight) {
  EXPECT_EQ(ParseInspectionDate("20240229"), ParseInspectionDate("20240229000000"));
}

TEST(ParseInspectionDate, RefusesEveryOtherLength) {
  const std::string text = "20240229121314151617";
  for (std::size_t length = 0; length <= text.size(); ++length) {
    EXPECT_EQ(ParseInspectionDate(text.substr(0, length)).has_value(), length == 8 || length == 14) << length;
  }
}

TEST(ParseInspectionDate, RefusesWhatIsNoDigitInAnyPlace) {
  for (const std::string good : {"20240229", "20240229121314"}) {
    for (std::size_t at = 0; at < good.size(); ++at) {
      for (const char other : std::string(" +-.:/aA\0\xB2", 10)) {
        std::string text = good;
        text[at] = other;
        EXPECT_FALSE(ParseInspectionDate(text)) << text;
      }
    }
  }
}

TEST(ParseInspectionDate, RefusesWhatDoesNotExist) {
  for (const char* text : {"20230229", "19000229", "20240230", "20240431", "20241301", "20240001", "20240100",
                           "20240132", "00000000", "00010101", "16001231", "16001231235959", "20240229240000",
                           "20240229006000", "20240229000060", "20240229999999"}) {
    EXPECT_FALSE(ParseInspectionDate(text)) << text;
  }
  EXPECT_TRUE(ParseInspectionDate("20000229235959"));
}

TEST(FormatInspectionDate, CutsPartsOfASecondButNotWhatTheDoubleLacks) {
  const double second = 1 / 86400.0;
  EXPECT_EQ(FormatInspectionDate(45322 + 10 * second), "20240131000010");
  EXPECT_EQ(FormatInspectionDate(45322 + 10.9 * second), "20240131000010");
  EXPECT_EQ(FormatInspectionDate(45322 + 9.99995 * second), "20240131000010");
  EXPECT_EQ(FormatInspectionDate(45322 + 9.9998 * second), "20240131000009");
  EXPECT_EQ(FormatInspectionDate(std::nextafter(45322.0, 0)), "20240131000000");
  EXPECT_EQ(FormatInspectionDate(45321.9999), "20240130235951");
}

TEST(FormatInspectionDate, CutsTowardsTheBeginningOfTime) {
  EXPECT_EQ(FormatInspectionDate(kFirstDay), "16010101000000");
  EXPECT_EQ(FormatInspectionDate(kFirstDay - 0.5 / 86400), "16010101000000");
  EXPECT_EQ(FormatInspectionDate(kFirstDay - 2.0 / 86400), std::nullopt);
}

TEST(FormatInspectionDate, WritesYearsOfFiveDigitsToo) {
  EXPECT_EQ(FormatInspectionDate(2958465.0), "99991231000000");
  EXPECT_EQ(FormatInspectionDate(2958466.0), "100000101000000");
}

TEST(FormatInspectionDate, GivesNothingForWhatIsNoDate) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  for (const double days : {kFirstDay - 1, -657435.0, -1e18, -1e308, -kInfinity, 1.1e7, 1e9, 1e18, 1e308, kInfinity,
                            std::numeric_limits<double>::quiet_NaN(), -std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_EQ(FormatInspectionDate(days), std::nullopt) << days;
  }
}

// ---- over the wire

TEST_F(IS_DTM, StoresMidnightForADateAlone) {
  EXPECT_EQ(Answer("ST_CST,IS_DTM=20240229"), "ok");
  const double days = 45351;
  EXPECT_EQ(service_.Item(kInspectionDate), service_.DigitsOf(&days, sizeof days));
  EXPECT_EQ(Answer("GT_CST,IS_DTM"), "CST,IS_DTM=20240229000000");
  EXPECT_EQ(Notices(), (Texts{"1281 16"}));
}

TEST_F(IS_DTM, StoresADateWithItsTime) {
  EXPECT_EQ(Answer("ST_CST,IS_DTM=20240229180000"), "ok");
  const double days = 45351.75;
  EXPECT_EQ(service_.Item(kInspectionDate), service_.DigitsOf(&days, sizeof days));
}

TEST_F(IS_DTM, ComesBackForHundredsOfMoments) {
  Generator generator(54);
  for (int i = 0; i < 400; ++i) {
    const Moment moment = AnyMoment(generator);
    const std::string before = service_.Item(kInspectionDate);
    EXPECT_EQ(Answer("ST_CST,IS_DTM=" + moment.Text()), moment.Exists() ? "ok" : "ER_PRM") << moment.Text();
    if (moment.Exists()) {
      EXPECT_EQ(Answer("GT_CST,IS_DTM"), "CST,IS_DTM=" + moment.Text());
    } else {
      EXPECT_EQ(service_.Item(kInspectionDate), before);
    }
  }
}

TEST_F(IS_DTM, IsRefusedWhenItIsNone) {
  for (const char* text : {"20230229", "2024022912", "2024022", "202402291", "2024022912131", "202402291213145",
                           "2024022x", "20240229 12131", "2024-2-9", "16001231", "20240229240000"}) {
    EXPECT_EQ(Answer(std::string("ST_CST,IS_DTM=") + text), "ER_PRM") << text;
  }
  EXPECT_EQ(Answer("ST_CST,IS_DTM"), "ER_PRM");
  EXPECT_EQ(StoreCalls(), Texts{});
  EXPECT_EQ(Notices(), Texts{});
}

TEST_F(IS_DTM, FailsAsAWholeWhenTheStoreHoldsNone) {
  for (const double days : {std::numeric_limits<double>::quiet_NaN(), 1e300, -1e300, -109206.0, 1e15}) {
    service_.SetValue(kInspectionDate, days);
    EXPECT_EQ(service_.Answers("GT_CST,IN_TYP,IS_DTM"), (Texts{"ER_FAL"})) << days;
  }
}

TEST_F(IS_DTM, IsRefusedOrFailsWhenThePlatformRefusesToConvertIt) {
  {
    const Failing failing("SystemTimeToFileTime", ERROR_INVALID_PARAMETER);
    EXPECT_EQ(Answer("ST_CST,IS_DTM=20240229"), "ER_PRM");
  }
  const Failing failing("FileTimeToSystemTime", ERROR_INVALID_PARAMETER);
  EXPECT_EQ(Answer("GT_CST,IS_DTM"), "ER_FAL");
}

}  // namespace
}  // namespace qxtest
