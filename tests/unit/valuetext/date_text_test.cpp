// Dates and times of day.
#include "commands/measure/valuetext/date_text.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

#include "unit/valuetext/generator.h"

namespace {

// Year, month, day of the week, day, hour, minute, second, milliseconds.
using Words = std::array<unsigned, 8>;

constexpr SYSTEMTIME kSome = {1, 2, 3, 4, 5, 6, 7, 8};
constexpr Words kUntouched = {1, 2, 3, 4, 5, 6, 7, 8};

Words WordsOf(const SYSTEMTIME& record) {
  return {record.wYear, record.wMonth,  record.wDayOfWeek, record.wDay,
          record.wHour, record.wMinute, record.wSecond,    record.wMilliseconds};
}

// The record after a text that is read, and after one that is refused.
Words Date(std::string_view text) {
  SYSTEMTIME record = kSome;
  EXPECT_TRUE(qxcm::ParseDate(text, &record)) << text;
  return WordsOf(record);
}
Words Time(std::string_view text) {
  SYSTEMTIME record = kSome;
  EXPECT_TRUE(qxcm::ParseTime(text, &record)) << text;
  return WordsOf(record);
}
void ExpectRefused(std::string_view text) {
  SYSTEMTIME record = kSome;
  EXPECT_FALSE(qxcm::ParseDate(text, &record)) << text;
  EXPECT_FALSE(qxcm::ParseTime(text, &record)) << text;
  EXPECT_EQ(WordsOf(record), kUntouched) << text;
}

TEST(ParseDate, ReadsYearMonthAndDayAndClearsTheDayOfTheWeek) {
  EXPECT_EQ(Date("20240131"), (Words{2024, 1, 0, 31, 5, 6, 7, 8}));
}

TEST(ParseTime, ReadsHourMinuteAndSecondAndClearsTheMilliseconds) {
  EXPECT_EQ(Time("093005"), (Words{1, 2, 3, 4, 9, 30, 5, 0}));
}

TEST(ParseDate, TakesFewerDigitsAsTheLowerOnes) {
  EXPECT_EQ(Date("115"), (Words{0, 1, 0, 15, 5, 6, 7, 8}));
  EXPECT_EQ(Date("7"), (Words{0, 0, 0, 7, 5, 6, 7, 8}));
  EXPECT_EQ(Time("115"), (Words{1, 2, 3, 4, 0, 1, 15, 0}));
}

TEST(ParseDate, TakesAnEmptyTextAsZeros) {
  EXPECT_EQ(Date(""), (Words{0, 0, 0, 0, 5, 6, 7, 8}));
  EXPECT_EQ(Time(""), (Words{1, 2, 3, 4, 0, 0, 0, 0}));
}

TEST(ParseDate, ChecksNoRange) {
  EXPECT_EQ(Date("20239999"), (Words{2023, 99, 0, 99, 5, 6, 7, 8}));
  EXPECT_EQ(Time("996199"), (Words{1, 2, 3, 4, 99, 61, 99, 0}));
}

TEST(ParseDate, TakesMoreDigitsAndKeepsSixteenBitsOfTheYear) {
  EXPECT_EQ(Date("00000000020240131"), (Words{2024, 1, 0, 31, 5, 6, 7, 8}));
  EXPECT_EQ(Date("655350131"), (Words{65535, 1, 0, 31, 5, 6, 7, 8}));
  EXPECT_EQ(Date("655360131"), (Words{0, 1, 0, 31, 5, 6, 7, 8}));
  EXPECT_EQ(Time("655370203"), (Words{1, 2, 3, 4, 1, 2, 3, 0}));
}

TEST(ParseDate, RefusesNumbersThatOverflow) {
  EXPECT_EQ(Date("2147483647"), (Words{214748 % 65536, 36, 0, 47, 5, 6, 7, 8}));
  ExpectRefused("2147483648");
  ExpectRefused("4294967296");
  ExpectRefused("18446744073709551617");
  ExpectRefused(std::string(5000, '1'));
}

TEST(ParseDate, RefusesEverythingButDigits) {
  for (const char* text : {"-1", "+20240131", " 20240131", "20240131 ", "2024-01-31", "20240a31", "x", "1.5"}) {
    ExpectRefused(text);
  }
  ExpectRefused(std::string_view("2024\0131", 8));
}

TEST(ParseDate, ReadsEveryNumberDigitByDigit) {
  qxtest::Generator generator(31);
  for (int i = 0; i < 50000; ++i) {
    const unsigned year = static_cast<unsigned>(generator.UpTo(9999));
    const unsigned month = static_cast<unsigned>(generator.UpTo(99));
    const unsigned day = static_cast<unsigned>(generator.UpTo(99));
    const std::string month_day = std::to_string(10000 + month * 100 + day).substr(1);
    ASSERT_EQ(Date(std::to_string(year) + month_day), (Words{year, month, 0, day, 5, 6, 7, 8}));
    ASSERT_EQ(Time(std::to_string(year) + month_day), (Words{1, 2, 3, 4, year, month, day, 0}));
  }
}

}  // namespace
