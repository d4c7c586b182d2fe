// Angle text against the same arithmetic worked out in integers, over well more than a million random cases.
//
// The two products of a conversion are rounded one after the other, so what is right at a rounding boundary is what
// ExactNumber says of them, not what real numbers would say.
#include <gtest/gtest.h>

#include <algorithm>
#include <boost/multiprecision/cpp_int.hpp>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

#include "commands/measure/valuetext/angle_text.h"
#include "unit/valuetext/exact_number.h"
#include "unit/valuetext/generator.h"

namespace {

using boost::multiprecision::cpp_int;
using qxtest::ExactNumber;
using qxtest::Generator;
using qxtest::Wide;

constexpr std::int64_t kTurn = 12960000;
constexpr double kRadiansPerUnit = 3.141592653589793 * 1.54320987654321e-7;
const ExactNumber kPi(3.141592653589793);
const ExactNumber kInversePi(0.3183098861837907);
const ExactNumber kUnitsPerHalfTurn(6480000);
const ExactNumber kHalfTurnsPerUnit(1.54320987654321e-7);

// An angle in units, both products rounded as doubles are; an angle whose first product no double holds counts as 0.
ExactNumber Units(double radians) {
  const ExactNumber product = ExactNumber(radians).Times(kUnitsPerHalfTurn);
  return product.overflows() ? ExactNumber(false, 0, 0) : product.Times(kInversePi);
}

double Radians(std::int64_t units) {
  const ExactNumber whole(units < 0, static_cast<std::uint64_t>(units < 0 ? -units : units), 0);
  return whole.Times(kPi).Times(kHalfTurnsPerUnit).ToDouble();
}

std::string Text(double radians) {
  char buffer[qxcm::kValueTextSize];
  return qxcm::FormatAngleDms(buffer, sizeof buffer, radians);
}

// The value of a few digits, or a number too large for any part of an angle.
std::int64_t Digits(std::string_view text) {
  std::int64_t value = 0;
  for (const char digit : text) {
    if (digit < '0' || digit > '9') return kTurn;
    value = value * 10 + (digit - '0');
  }
  return value;
}

// What a well-formed text says, in tenths of a second; a turn when its form is wrong in any way.
std::int64_t UnitsOf(std::string_view text) {
  const bool negative = text.substr(0, 1) == "-";
  if (negative) text.remove_prefix(1);
  const std::size_t point = text.find('.');
  if (point < 1 || point > 3 || text.size() != point + 6) return kTurn;
  if (point > 1 && text[0] == '0') return kTurn;
  const std::int64_t degrees = Digits(text.substr(0, point));
  const std::int64_t minutes = Digits(text.substr(point + 1, 2));
  const std::int64_t seconds = Digits(text.substr(point + 3, 2));
  const std::int64_t tenths = Digits(text.substr(point + 5));
  if (degrees > 359 || minutes > 59 || seconds > 59 || tenths > 9) return kTurn;
  const std::int64_t units = ((degrees * 60 + minutes) * 60 + seconds) * 10 + tenths;
  if (negative && units == 0) return kTurn;
  return negative ? -units : units;
}

template <typename Integer>
std::int64_t ExpectedShown(double radians) {
  const ExactNumber units = Units(radians);
  const auto folded = static_cast<std::int64_t>(Integer(units.HalfFurther().Whole<Integer>() % kTurn));
  return units.negative() ? -folded : folded;
}

template <typename Integer>
std::int64_t ExpectedRounded(double radians, std::int64_t step) {
  const ExactNumber units = Units(radians);
  const auto width = static_cast<Integer>(step);
  const Integer steps = (units.Whole<Integer>() + width / 2) / width;
  const auto folded = static_cast<std::int64_t>(Integer(steps * width % kTurn));
  return units.negative() ? -folded : folded;
}

// A resolution in tenths of a second, then as the interface takes it.
std::int64_t RandomStep(Generator& generator) { return generator.Between(std::int64_t{1}, std::int64_t{600}); }
double Resolution(std::int64_t step) { return static_cast<double>(step) / 10; }

// An angle at, just below or just above a whole number of half units.
double NearABoundary(Generator& generator, std::int64_t step) {
  double angle = static_cast<double>(generator.Between(-4 * kTurn, 4 * kTurn) / step * step) * 0.5 * kRadiansPerUnit;
  const double towards = generator.Coin() ? 100 : -100;
  for (auto nudges = generator.UpTo(4); nudges > 0; --nudges) angle = std::nextafter(angle, towards);
  return angle;
}

TEST(FormatAngleDmsExact, OfAnglesWithinAFewTurns) {
  Generator generator(1);
  for (int i = 0; i < 250000; ++i) {
    const double angle = generator.Between(-20.0, 20.0);
    ASSERT_EQ(UnitsOf(Text(angle)), ExpectedShown<Wide>(angle)) << std::hexfloat << angle << ' ' << Text(angle);
  }
}

TEST(FormatAngleDmsExact, OfAnglesAtTheRoundingBoundaries) {
  Generator generator(2);
  for (int i = 0; i < 250000; ++i) {
    const double angle = NearABoundary(generator, 1);
    ASSERT_EQ(UnitsOf(Text(angle)), ExpectedShown<Wide>(angle)) << std::hexfloat << angle << ' ' << Text(angle);
  }
}

TEST(FormatAngleDmsExact, OfAnglesOfUsualAndUnusualSizes) {
  Generator generator(3);
  for (int i = 0; i < 150000; ++i) {
    const double angle = generator.AnyMagnitude(-40, 90);
    ASSERT_EQ(UnitsOf(Text(angle)), ExpectedShown<Wide>(angle)) << std::hexfloat << angle << ' ' << Text(angle);
  }
}

TEST(FormatAngleDmsExact, OfEveryFiniteDouble) {
  Generator generator(4);
  for (int i = 0; i < 10000; ++i) {
    const double angle = generator.AnyMagnitude(-1020, 1024);
    ASSERT_EQ(UnitsOf(Text(angle)), ExpectedShown<cpp_int>(angle)) << std::hexfloat << angle << ' ' << Text(angle);
  }
}

void ExpectRounded(double angle, double resolution, std::int64_t units) {
  const double rounded = qxcm::RoundAngle(angle, resolution);
  ASSERT_EQ(rounded, Radians(units)) << std::hexfloat << angle << " resolution " << resolution;
  ASSERT_EQ(UnitsOf(Text(rounded)), units) << std::hexfloat << angle << " resolution " << resolution;
}

TEST(RoundAngleExact, OfAnglesWithinAFewTurns) {
  Generator generator(5);
  for (int i = 0; i < 150000 && !HasFatalFailure(); ++i) {
    const double angle = generator.Between(-20.0, 20.0);
    const std::int64_t step = RandomStep(generator);
    ExpectRounded(angle, Resolution(step), ExpectedRounded<Wide>(angle, step));
  }
}

TEST(RoundAngleExact, OfAnglesAtTheRoundingBoundaries) {
  Generator generator(6);
  for (int i = 0; i < 150000 && !HasFatalFailure(); ++i) {
    const std::int64_t step = RandomStep(generator);
    const double angle = NearABoundary(generator, step);
    ExpectRounded(angle, Resolution(step), ExpectedRounded<Wide>(angle, step));
  }
}

TEST(RoundAngleExact, OfAnyResolutionAccepted) {
  Generator generator(7);
  for (int i = 0; i < 100000 && !HasFatalFailure(); ++i) {
    const double resolution = generator.Between(0.1, 60.0);
    const auto step =
        static_cast<std::int64_t>(ExactNumber(resolution).Times(ExactNumber(10)).HalfFurther().Whole<Wide>());
    const double angle = generator.Between(-7.0, 7.0);
    ExpectRounded(angle, resolution, ExpectedRounded<Wide>(angle, step));
  }
}

TEST(RoundAngleExact, OfEveryFiniteDouble) {
  Generator generator(8);
  for (int i = 0; i < 10000 && !HasFatalFailure(); ++i) {
    const double angle = generator.AnyMagnitude(-1020, 1024);
    const std::int64_t step = RandomStep(generator);
    ExpectRounded(angle, Resolution(step), ExpectedRounded<cpp_int>(angle, step));
  }
}

// The text's meaning by the rules, on whole strings; false when it has none.
bool Meaning(std::string text, bool pad, std::int64_t* units) {
  const bool negative = !text.empty() && text[0] == '-';
  if (negative || (!text.empty() && text[0] == '+')) text.erase(0, 1);
  if (!text.empty() && text[0] == '.') text.insert(0, "0");
  if (pad && text.find('.') == std::string::npos) text += '.';
  if (std::count(text.begin(), text.end(), '.') != 1) return false;
  const std::size_t point = text.find('.');
  std::string fraction = text.substr(point + 1);
  if (pad) fraction = (fraction + "00000").substr(0, 5);
  std::string degrees = text.substr(0, point);
  if (fraction.size() != 5) return false;
  for (const char letter : degrees + fraction) {
    if (std::string("0123456789").find(letter) == std::string::npos) return false;
  }
  degrees.erase(0, std::min(degrees.find_first_not_of('0'), degrees.size()));
  const std::string limit = "2147483647";
  if (degrees.size() > limit.size() || (degrees.size() == limit.size() && degrees > limit)) degrees = limit;
  const std::int64_t whole = std::stoll("0" + degrees);
  *units = ((whole * 60 + std::stoll(fraction.substr(0, 2))) * 60 + std::stoll(fraction.substr(2, 2))) * 10 +
           std::stoll(fraction.substr(4));
  if (negative) *units = -*units;
  return true;
}

void ExpectRead(const std::string& text, bool pad) {
  std::int64_t units = 0;
  double radians = 77;
  const bool meant = Meaning(text, pad, &units);
  ASSERT_EQ(qxcm::ParseAngleDms(text, pad, &radians), meant) << text << " padded " << pad;
  ASSERT_EQ(radians, meant ? Radians(units) : 77) << text << " padded " << pad;
}

TEST(ParseAngleDmsExact, OfTextsThatAreNearlyAngles) {
  Generator generator(9);
  for (int i = 0; i < 120000 && !HasFatalFailure(); ++i) {
    std::string text = generator.Coin() ? "" : generator.Coin() ? "-" : "+";
    text += generator.Text("0123456789", generator.UpTo(7) == 0 ? 14 : 3);
    if (generator.UpTo(7) != 0) text += "." + generator.Text("0123456789", 5);
    if (generator.UpTo(7) == 0) text.insert(generator.UpTo(text.size()), generator.Text("0123456789.+- ax", 2));
    ExpectRead(text, generator.Coin());
  }
}

TEST(ParseAngleDmsExact, OfWellFormedTexts) {
  Generator generator(10);
  for (int i = 0; i < 60000 && !HasFatalFailure(); ++i) {
    const std::string fraction = std::to_string(generator.Between(std::int64_t{100000}, std::int64_t{199999}));
    ExpectRead(generator.Text("0123456789", 11) + "." + fraction.substr(1), false);
  }
}

TEST(ParseAngleDmsExact, OfAnyTextOfTheseLetters) {
  Generator generator(11);
  for (int i = 0; i < 60000 && !HasFatalFailure(); ++i) ExpectRead(generator.Text("0123456.+-", 9), generator.Coin());
}

TEST(AngleTextRoundTrip, OfEveryNumberOfUnitsSampledComesBackTheSame) {
  for (std::int64_t units = -kTurn + 1; units < kTurn; units += 97) {
    const std::string text = Text(Radians(units));
    double radians = 0;
    ASSERT_EQ(UnitsOf(text), units) << text;
    ASSERT_TRUE(qxcm::ParseAngleDms(text, units % 2 == 0, &radians)) << text;
    ASSERT_EQ(radians, Radians(units)) << text;
    ASSERT_EQ(Text(radians), text);
  }
}

}  // namespace
