// Angle text and angle rounding: every rule, one by one.
#include "commands/measure/valuetext/angle_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>

namespace {

constexpr double kPi = 3.141592653589793;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

double Seconds(double seconds) { return seconds * kPi / 648000; }
double Degrees(double degrees) { return degrees * kPi / 180; }

std::string Text(double radians) {
  char buffer[qxcm::kValueTextSize];
  return qxcm::FormatAngleDms(buffer, sizeof buffer, radians);
}

// The angle in seconds, to a millionth, after rounding.
double RoundedSeconds(double seconds, double resolution) {
  return std::round(qxcm::RoundAngle(Seconds(seconds), resolution) * 648000 / kPi * 1e6) / 1e6;
}

// What is read, as text again, or "refused".
std::string Reads(std::string_view text, bool pad_fraction) {
  double radians = 77;
  if (qxcm::ParseAngleDms(text, pad_fraction, &radians)) return Text(radians);
  EXPECT_EQ(radians, 77) << text;
  return "refused";
}
std::string Padded(std::string_view text) { return Reads(text, true); }
std::string Strict(std::string_view text) { return Reads(text, false); }

TEST(FormatAngleDms, WritesDegreesMinutesSecondsAndTenths) {
  EXPECT_EQ(Text(Degrees(123) + Seconds(4 * 60 + 5.6)), "123.04056");
  EXPECT_EQ(Text(Degrees(7)), "7.00000");
  EXPECT_EQ(Text(Seconds(-30 * 60)), "-0.30000");
}

TEST(FormatAngleDms, WritesTheWellKnownAngles) {
  EXPECT_EQ(Text(0), "0.00000");
  EXPECT_EQ(Text(kPi), "180.00000");
  EXPECT_EQ(Text(-kPi / 2), "-90.00000");
  EXPECT_EQ(Text(2 * kPi), "0.00000");
}

TEST(FormatAngleDms, ReturnsTheBuffer) {
  char buffer[qxcm::kValueTextSize];
  EXPECT_EQ(qxcm::FormatAngleDms(buffer, sizeof buffer, 1), buffer);
}

TEST(FormatAngleDms, WritesNoSignForAnythingThatRoundsToZero) {
  EXPECT_EQ(Text(Seconds(-0.04)), "0.00000");
  EXPECT_EQ(Text(-0.0), "0.00000");
  EXPECT_EQ(Text(-2 * kPi), "0.00000");
  EXPECT_EQ(Text(-6 * kPi), "0.00000");
  EXPECT_EQ(Text(-std::numeric_limits<double>::denorm_min()), "0.00000");
}

TEST(FormatAngleDms, RoundsHalfATenthAwayFromZero) {
  EXPECT_EQ(Text(Seconds(0.06)), "0.00001");
  EXPECT_EQ(Text(Seconds(-0.06)), "-0.00001");
  EXPECT_EQ(Text(Seconds(0.0500001)), "0.00001");
  EXPECT_EQ(Text(Seconds(-0.0500001)), "-0.00001");
  EXPECT_EQ(Text(Seconds(0.0499999)), "0.00000");
}

TEST(FormatAngleDms, CarriesThroughSecondsMinutesAndDegreesBeforeItDropsTheTurn) {
  EXPECT_EQ(Text(Degrees(359) + Seconds(59 * 60 + 59.96)), "0.00000");
  EXPECT_EQ(Text(-Degrees(359) - Seconds(59 * 60 + 59.96)), "0.00000");
  EXPECT_EQ(Text(Degrees(359) + Seconds(59 * 60 + 59.94)), "359.59599");
  EXPECT_EQ(Text(Seconds(59.96)), "0.01000");
  EXPECT_EQ(Text(Seconds(59 * 60 + 59.96)), "1.00000");
}

TEST(FormatAngleDms, KeepsTheSignAndDropsWholeTurns) {
  EXPECT_EQ(Text(Degrees(-10)), "-10.00000");
  EXPECT_EQ(Text(Degrees(370)), "10.00000");
  EXPECT_EQ(Text(Degrees(-370)), "-10.00000");
  EXPECT_EQ(Text(Degrees(36000010)), "10.00000");
}

TEST(FormatAngleDms, WritesZeroForWhatIsNoAngle) {
  EXPECT_EQ(Text(kNotANumber), "0.00000");
  EXPECT_EQ(Text(-kNotANumber), "0.00000");
  EXPECT_EQ(Text(kInfinity), "0.00000");
  EXPECT_EQ(Text(-kInfinity), "0.00000");
  EXPECT_EQ(Text(std::numeric_limits<double>::max()), "0.00000");
  EXPECT_EQ(Text(-2.8e301), "0.00000");
}

TEST(FormatAngleDms, CutsTheTextAtTheBufferSize) {
  char buffer[8] = "#######";
  EXPECT_STREQ(qxcm::FormatAngleDms(buffer, 5, kPi), "180.");
  EXPECT_EQ(buffer[5], '#');
  EXPECT_EQ(qxcm::FormatAngleDms(buffer, 0, kPi), buffer);
  EXPECT_EQ(buffer[0], '1');
}

TEST(RoundAngle, CutsToTenthsAndThenAddsHalfAStep) {
  EXPECT_EQ(RoundedSeconds(10.96, 1.0), 11.0);
  EXPECT_EQ(RoundedSeconds(10.94, 1.0), 11.0);
  EXPECT_EQ(RoundedSeconds(10.44, 1.0), 10.0);
  EXPECT_EQ(RoundedSeconds(10.499, 1.0), 10.0);
  EXPECT_EQ(RoundedSeconds(10.5001, 1.0), 11.0);
}

TEST(RoundAngle, AtATenthOnlyCuts) {
  EXPECT_EQ(RoundedSeconds(10.4999, 0.1), 10.4);
  EXPECT_EQ(RoundedSeconds(-10.4999, 0.1), -10.4);
}

TEST(RoundAngle, GoesToTheNearestMinuteAtSixtySeconds) {
  EXPECT_EQ(RoundedSeconds(29.9, 60.0), 0.0);
  EXPECT_EQ(RoundedSeconds(30.1, 60.0), 60.0);
  EXPECT_EQ(RoundedSeconds(-30.1, 60.0), -60.0);
}

TEST(RoundAngle, RoundsTheResolutionToTenthsToo) {
  EXPECT_EQ(RoundedSeconds(1.25, 0.14), 1.2);    // counts as 0.1
  EXPECT_EQ(RoundedSeconds(1.35, 0.16), 1.4);    // counts as 0.2
  EXPECT_EQ(RoundedSeconds(100, 59.94), 119.8);  // counts as 59.9
}

TEST(RoundAngle, RoundsNegativeAnglesAsTheirMirrorImages) {
  for (const double seconds : {0.3, 10.44, 10.5001, 10.94, 4321.5}) {
    EXPECT_EQ(qxcm::RoundAngle(Seconds(-seconds), 1.0), -qxcm::RoundAngle(Seconds(seconds), 1.0));
  }
}

TEST(RoundAngle, DropsWholeTurnsAfterRoundingAndKeepsTheSign) {
  EXPECT_EQ(Text(qxcm::RoundAngle(Degrees(370.5), 1.0)), "10.30000");
  EXPECT_EQ(Text(qxcm::RoundAngle(Degrees(-370.5), 1.0)), "-10.30000");
  EXPECT_EQ(qxcm::RoundAngle(Degrees(359) + Seconds(59 * 60 + 59.7), 1.0), 0.0);
}

TEST(RoundAngle, NeverGivesAMinusZero) {
  EXPECT_FALSE(std::signbit(qxcm::RoundAngle(Seconds(-0.3), 1.0)));
  EXPECT_FALSE(std::signbit(qxcm::RoundAngle(-0.0, 1.0)));
}

TEST(RoundAngle, GivesZeroForWhatIsNoAngle) {
  for (const double angle : {kNotANumber, kInfinity, -kInfinity, 2.8e301, -2.8e301}) {
    EXPECT_EQ(qxcm::RoundAngle(angle, 1.0), 0.0);
  }
}

TEST(RoundAngle, TakesATenthForAResolutionThatIsNone) {
  for (const double resolution : {0.0, -5.0, 0.049, -kInfinity, kNotANumber}) {
    EXPECT_EQ(RoundedSeconds(10.47, resolution), 10.4);
  }
}

TEST(RoundAngle, TakesATurnForAResolutionAboveIt) {
  for (const double resolution : {2e6, 1e300, kInfinity}) EXPECT_EQ(qxcm::RoundAngle(Degrees(200), resolution), 0.0);
}

TEST(ParseAngleDms, ReadsDegreesMinutesSecondsAndTenths) {
  EXPECT_EQ(Strict("123.04056"), "123.04056");
  EXPECT_EQ(Strict("000123.04056"), "123.04056");
  EXPECT_EQ(Strict("0.00000"), "0.00000");
}

TEST(ParseAngleDms, TakesOneSignInFront) {
  EXPECT_EQ(Strict("-0.30000"), "-0.30000");
  EXPECT_EQ(Strict("+0.30000"), "0.30000");
  EXPECT_EQ(Strict("--1.00000"), "refused");
  EXPECT_EQ(Strict("+-1.00000"), "refused");
  EXPECT_EQ(Strict("1.-0000"), "refused");
}

TEST(ParseAngleDms, ReadsDegreesThatAreMissingAsZero) {
  EXPECT_EQ(Strict(".30000"), "0.30000");
  EXPECT_EQ(Strict("-.30000"), "-0.30000");
  EXPECT_EQ(Padded("+.5"), "0.50000");
  EXPECT_EQ(Padded("."), "0.00000");
}

TEST(ParseAngleDms, WantsExactlyFiveDigitsWithoutPadding) {
  EXPECT_EQ(Strict("12.3"), "refused");
  EXPECT_EQ(Strict("12.0000"), "refused");
  EXPECT_EQ(Strict("12.000000"), "refused");
  EXPECT_EQ(Strict("12."), "refused");
  EXPECT_EQ(Strict("."), "refused");
}

TEST(ParseAngleDms, WantsAPointWithoutPadding) {
  EXPECT_EQ(Strict("12"), "refused");
  EXPECT_EQ(Strict("1200000"), "refused");
  EXPECT_EQ(Strict(""), "refused");
  EXPECT_EQ(Strict("-"), "refused");
}

TEST(ParseAngleDms, PadsAShortFractionWithZeros) {
  EXPECT_EQ(Padded("12.3"), "12.30000");
  EXPECT_EQ(Padded("12.0405"), "12.04050");
  EXPECT_EQ(Padded("12."), "12.00000");
  EXPECT_EQ(Padded("12"), "12.00000");
}

TEST(ParseAngleDms, CutsALongFractionAndDoesNotRoundIt) {
  EXPECT_EQ(Padded("12.3456789"), "12.34567");
  EXPECT_EQ(Padded("12.00009999999999"), "12.00009");
}

TEST(ParseAngleDms, ReadsNoDigitsAtAllAsZeroWithPadding) {
  EXPECT_EQ(Padded(""), "0.00000");
  EXPECT_EQ(Padded("-"), "0.00000");
  EXPECT_EQ(Padded("+"), "0.00000");
}

TEST(ParseAngleDms, RefusesASecondPointWherever) {
  for (const bool pad : {false, true}) {
    for (const char* text : {"1.2.3", "1..2", "..", "1.00000.", "1.00000.1", ".1.00000", "1.0000000."}) {
      EXPECT_EQ(Reads(text, pad), "refused") << text;
    }
  }
}

TEST(ParseAngleDms, RefusesEverythingButDigits) {
  for (const bool pad : {false, true}) {
    for (const char* text : {"12.3a", "a", "1a.00000", " 1.00000", "1 .00000", "1.0000 ", "1,00000", "0x1.00000"}) {
      EXPECT_EQ(Reads(text, pad), "refused") << text;
    }
  }
  EXPECT_EQ(Strict("12.3456a"), "refused");
  EXPECT_EQ(Strict(std::string_view("1.000\0000", 8)), "refused");
}

TEST(ParseAngleDms, DoesNotLookAtWhatItCutsExceptForPoints) {
  EXPECT_EQ(Padded("12.34567a"), "12.34567");
  EXPECT_EQ(Padded("12.34567 -+"), "12.34567");
  EXPECT_EQ(Padded("12.3456a7"), "refused");
}

TEST(ParseAngleDms, TakesMinutesAndSecondsAboveFiftyNineAsTheyStand) {
  EXPECT_EQ(Strict("0.60000"), "1.00000");
  EXPECT_EQ(Strict("0.00990"), "0.01390");
  EXPECT_EQ(Strict("0.99999"), "1.40399");
  EXPECT_EQ(Strict("359.60000"), "0.00000");
}

TEST(ParseAngleDms, KeepsWholeTurns) {
  double radians = 0;
  ASSERT_TRUE(qxcm::ParseAngleDms("720.00000", false, &radians));
  EXPECT_NEAR(radians, 4 * kPi, 1e-12);
}

TEST(ParseAngleDms, ReadsMinusZeroAsZero) {
  double radians = 1;
  ASSERT_TRUE(qxcm::ParseAngleDms("-0.00000", false, &radians));
  EXPECT_EQ(radians, 0);
  EXPECT_FALSE(std::signbit(radians));
}

TEST(ParseAngleDms, HoldsDegreesAtTheLargestSignedNumberOf32Bits) {
  double largest = 0;
  double beyond = 0;
  ASSERT_TRUE(qxcm::ParseAngleDms("2147483647.00000", false, &largest));
  ASSERT_TRUE(qxcm::ParseAngleDms("2147483648.00000", false, &beyond));
  EXPECT_EQ(beyond, largest);
  ASSERT_TRUE(qxcm::ParseAngleDms(std::string(5000, '9'), true, &beyond));
  EXPECT_EQ(beyond, largest);
  EXPECT_NEAR(largest, Degrees(2147483647), 1e-6);
}

}  // namespace
