// Fixed-point text and the lenient decimal conversions.
#include "commands/measure/valuetext/number_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <boost/multiprecision/cpp_int.hpp>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>

#include "commands/measure/valuetext/angle_text.h"
#include "unit/valuetext/generator.h"

namespace {

using boost::multiprecision::cpp_int;
using qxcm::ParseLeadingDouble;
using qxcm::ParseLeadingHex;
using qxcm::ParseLeadingInt;
using qxtest::Generator;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr std::int32_t kMin = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMax = std::numeric_limits<std::int32_t>::max();

std::string Fixed(double value) {
  char buffer[qxcm::kValueTextSize];
  return qxcm::FormatFixed4(buffer, sizeof buffer, value);
}

// The same value and the same sign of zero.
testing::AssertionResult Same(double left, double right) {
  if (std::memcmp(&left, &right, sizeof left) == 0) return testing::AssertionSuccess();
  return testing::AssertionFailure() << left << " is not " << right;
}

// |value| in ten-thousandths, the nearest whole number, a tie to even: worked out in integers.
cpp_int TenThousandths(double value) {
  int exponent = 0;
  const double mantissa = std::frexp(std::fabs(value), &exponent);
  cpp_int scaled = cpp_int(static_cast<std::uint64_t>(std::ldexp(mantissa, 53))) * 10000;
  exponent -= 53;
  if (exponent >= 0) return scaled << static_cast<unsigned>(exponent);
  const auto shift = static_cast<unsigned>(-exponent);
  const cpp_int whole = scaled >> shift;
  const cpp_int rest = scaled - (whole << shift);
  const cpp_int half = cpp_int(1) << (shift - 1);
  return rest > half || (rest == half && whole % 2 == 1) ? whole + 1 : whole;
}

std::string ExactFixed(double value) {
  std::string digits = TenThousandths(value).str();
  if (digits.size() < 5) digits.insert(0, 5 - digits.size(), '0');
  digits.insert(digits.size() - 4, ".");
  return (std::signbit(value) ? "-" : "") + digits;
}

TEST(WholePart, CutsTowardZeroAsTruncDoes) {
  const double infinity = std::numeric_limits<double>::infinity();
  for (const double value :
       {0.0, -0.0, 0.9, -0.9, 1.0, -1.5, 4503599627370495.5, -1e300, 5e-324, infinity, -infinity}) {
    EXPECT_EQ(qxcm::WholePart(value), std::trunc(value)) << value;
    EXPECT_EQ(std::signbit(qxcm::WholePart(value)), std::signbit(value)) << value;
  }
  EXPECT_TRUE(std::isnan(qxcm::WholePart(std::numeric_limits<double>::quiet_NaN())));
}

TEST(FormatFixed4, WritesFourDecimals) {
  EXPECT_EQ(Fixed(0), "0.0000");
  EXPECT_EQ(Fixed(15), "15.0000");
  EXPECT_EQ(Fixed(1013.25), "1013.2500");
  EXPECT_EQ(Fixed(-12.34567), "-12.3457");
  EXPECT_EQ(Fixed(9.99996), "10.0000");
  EXPECT_EQ(Fixed(1e15), "1000000000000000.0000");
}

TEST(FormatFixed4, RoundsTheExactValueAndATieToEven) {
  EXPECT_EQ(Fixed(0.03125), "0.0312");
  EXPECT_EQ(Fixed(0.09375), "0.0938");
  EXPECT_EQ(Fixed(0.00005), "0.0001");  // the double is a little above
  EXPECT_EQ(Fixed(2.00005), "2.0000");  // a little below
  EXPECT_EQ(Fixed(0.000049), "0.0000");
}

TEST(FormatFixed4, KeepsTheSignOfWhatRoundsToZero) {
  EXPECT_EQ(Fixed(-0.00001), "-0.0000");
  EXPECT_EQ(Fixed(-0.0), "-0.0000");
}

TEST(FormatFixed4, LeavesTheTextEmptyForWhatIsNoNumber) {
  EXPECT_EQ(Fixed(kNotANumber), "");
  EXPECT_EQ(Fixed(kInfinity), "");
  EXPECT_EQ(Fixed(-kInfinity), "");
}

TEST(FormatFixed4, CutsTheTextAtTheBufferSize) {
  EXPECT_EQ(Fixed(1e300), ExactFixed(1e300).substr(0, 63));
  EXPECT_EQ(Fixed(-std::numeric_limits<double>::max()), ExactFixed(-std::numeric_limits<double>::max()).substr(0, 63));
  char buffer[8] = "#######";
  EXPECT_STREQ(qxcm::FormatFixed4(buffer, 5, 12.5), "12.5");
  EXPECT_EQ(buffer[5], '#');
}

TEST(FormatFixed4, ReturnsTheBufferAndTouchesNothingOfAnEmptyOne) {
  char buffer[2] = "#";
  EXPECT_EQ(qxcm::FormatFixed4(buffer, 0, 1.5), buffer);
  EXPECT_EQ(qxcm::FormatFixed4(buffer, 0, kNotANumber), buffer);
  EXPECT_EQ(buffer[0], '#');
}

TEST(FormatFixed4, IsExactForRandomNumbersOfEverySize) {
  Generator generator(21);
  for (int i = 0; i < 20000; ++i) {
    const double value = i % 2 == 0 ? generator.Between(-5000.0, 5000.0) : generator.AnyMagnitude(-60, 180);
    ASSERT_EQ(Fixed(value), ExactFixed(value));
  }
}

TEST(FormatFixed4, IsExactForTies) {
  Generator generator(22);
  for (int i = 0; i < 20000; ++i) {
    const double value = static_cast<double>(generator.Between(std::int64_t{-1000000}, std::int64_t{1000000})) / 32;
    ASSERT_EQ(Fixed(value), ExactFixed(value));
  }
}

// For the test's duration the process speaks a locale with a decimal comma, where there is one.
class CommaLocale {
 public:
  CommaLocale() {
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "fr_FR.utf8", "ps_AF.utf8"}) {
      found_ = found_ || std::setlocale(LC_NUMERIC, name) != nullptr;
    }
    found_ = found_ && std::strcmp(std::localeconv()->decimal_point, ".") != 0;
  }
  CommaLocale(const CommaLocale&) = delete;
  CommaLocale& operator=(const CommaLocale&) = delete;
  ~CommaLocale() { std::setlocale(LC_NUMERIC, "C"); }
  bool found() const { return found_; }

 private:
  bool found_ = false;
};

TEST(NumberText, HasAPointInEveryLocale) {
  const CommaLocale locale;
  if (!locale.found()) GTEST_SKIP() << "no locale with a decimal comma is installed";
  EXPECT_EQ(Fixed(-12.34567), "-12.3457");
  EXPECT_EQ(Fixed(1e300), ExactFixed(1e300).substr(0, 63));
  EXPECT_EQ(ParseLeadingDouble("12.5"), 12.5);
  EXPECT_EQ(ParseLeadingDouble("12,5"), 12);
}

TEST(ParseLeadingInt, ReadsASignedNumber) {
  EXPECT_EQ(ParseLeadingInt("0"), 0);
  EXPECT_EQ(ParseLeadingInt("257"), 257);
  EXPECT_EQ(ParseLeadingInt("-12"), -12);
  EXPECT_EQ(ParseLeadingInt("+12"), 12);
  EXPECT_EQ(ParseLeadingInt("0010"), 10);
}

TEST(ParseLeadingInt, SkipsBlanksInFrontOfTheSignOnly) {
  EXPECT_EQ(ParseLeadingInt(" \t\n\v\f\r-7"), -7);
  EXPECT_EQ(ParseLeadingInt("- 7"), 0);
  EXPECT_EQ(ParseLeadingInt("\xA0"
                            "7"),
            0);
}

TEST(ParseLeadingInt, StopsAtTheFirstOtherCharacter) {
  EXPECT_EQ(ParseLeadingInt("12ab"), 12);
  EXPECT_EQ(ParseLeadingInt("12.9"), 12);
  EXPECT_EQ(ParseLeadingInt("1e3"), 1);
  EXPECT_EQ(ParseLeadingInt("0x10"), 0);
  EXPECT_EQ(ParseLeadingInt(std::string_view("1\0002", 3)), 1);
  EXPECT_EQ(ParseLeadingInt("3/:"), 3);
}

TEST(ParseLeadingInt, ReadsTextWithoutDigitsAsZero) {
  for (const char* text : {"", " ", "-", "+", "--1", "+-1", "abc", ".5"}) EXPECT_EQ(ParseLeadingInt(text), 0) << text;
  EXPECT_EQ(ParseLeadingInt(std::string_view()), 0);
}

TEST(ParseLeadingInt, HoldsAtTheEndsOf32Bits) {
  EXPECT_EQ(ParseLeadingInt("2147483647"), kMax);
  EXPECT_EQ(ParseLeadingInt("2147483648"), kMax);
  EXPECT_EQ(ParseLeadingInt("-2147483648"), kMin);
  EXPECT_EQ(ParseLeadingInt("-2147483649"), kMin);
  EXPECT_EQ(ParseLeadingInt(std::string(8000, '9')), kMax);
  EXPECT_EQ(ParseLeadingInt("-" + std::string(8000, '9')), kMin);
}

TEST(ParseLeadingInt, LooksNoFurtherThanTheTextGoes) {
  EXPECT_EQ(ParseLeadingInt(std::string_view("123456").substr(0, 3)), 123);
}

TEST(ParseLeadingInt, AgreesWithTheCLibrary) {
  Generator generator(23);
  for (int i = 0; i < 200000; ++i) {
    const std::string text =
        generator.Text(" \t+-", 2) + generator.Text("0123456789", 13) + generator.Text("0+-. x", 2);
    const long long value = std::strtoll(text.c_str(), nullptr, 10);
    ASSERT_EQ(ParseLeadingInt(text), std::clamp<long long>(value, kMin, kMax)) << '"' << text << '"';
  }
}

TEST(ParseLeadingHex, ReadsDigitsOfEitherCaseAndASign) {
  EXPECT_EQ(ParseLeadingHex("1a2b"), 0x1A2B);
  EXPECT_EQ(ParseLeadingHex("1A2B"), 0x1A2B);
  EXPECT_EQ(ParseLeadingHex("-fF"), -255);
  EXPECT_EQ(ParseLeadingHex("+2C"), 0x2C);
  EXPECT_EQ(ParseLeadingHex("0010"), 16);
  EXPECT_EQ(ParseLeadingHex(" \t\n\v\f\r-7"), -7);
}

TEST(ParseLeadingHex, TakesOnePrefixBehindTheSign) {
  EXPECT_EQ(ParseLeadingHex("0x2c"), 0x2C);
  EXPECT_EQ(ParseLeadingHex(" -0X2C"), -0x2C);
  for (const char* text : {"0x", "0xg", "0x-1", "0x 1", "0x0x1", "0x+1", "x1", "-0x"}) {
    EXPECT_EQ(ParseLeadingHex(text), 0) << text;
  }
}

TEST(ParseLeadingHex, StopsAtTheFirstOtherCharacter) {
  EXPECT_EQ(ParseLeadingHex("12g"), 0x12);
  EXPECT_EQ(ParseLeadingHex("1.8"), 1);
  EXPECT_EQ(ParseLeadingHex("1@`/:"), 1);
  EXPECT_EQ(ParseLeadingHex(std::string_view("1\0002", 3)), 1);
  EXPECT_EQ(ParseLeadingHex(std::string_view("123456").substr(0, 3)), 0x123);
}

TEST(ParseLeadingHex, ReadsTextWithoutDigitsAsZero) {
  for (const char* text : {"", " ", "-", "+", "--1", "+-1", "-+1", "- 1", "ghi", ".5",
                           "\xA0"
                           "1"}) {
    EXPECT_EQ(ParseLeadingHex(text), 0) << text;
  }
  EXPECT_EQ(ParseLeadingHex(std::string_view()), 0);
}

TEST(ParseLeadingHex, HoldsAtTheEndsOf32Bits) {
  EXPECT_EQ(ParseLeadingHex("7FFFFFFF"), kMax);
  EXPECT_EQ(ParseLeadingHex("80000000"), kMax);
  EXPECT_EQ(ParseLeadingHex("FFFFFFFF"), kMax);
  EXPECT_EQ(ParseLeadingHex("-80000000"), kMin);
  EXPECT_EQ(ParseLeadingHex("-80000001"), kMin);
  EXPECT_EQ(ParseLeadingHex("-FFFFFFFFFFFFFFFF"), kMin);
  EXPECT_EQ(ParseLeadingHex("0x" + std::string(8000, 'f')), kMax);
  EXPECT_EQ(ParseLeadingHex("-0x" + std::string(8000, 'f')), kMin);
  EXPECT_EQ(ParseLeadingHex(std::string(8000, '0') + "1"), 1);
}

TEST(ParseLeadingHex, AgreesWithTheCLibrary) {
  Generator generator(26);
  for (int i = 0; i < 200000; ++i) {
    const std::string text = generator.Text(" \t+-", 2) + generator.Text("0x", i % 3 == 0 ? 3 : 0) +
                             generator.Text("0123456789abcdefABCDEF", 11) + generator.Text("0fg+-. xX", 2);
    const long long value = std::strtoll(text.c_str(), nullptr, 16);
    ASSERT_EQ(ParseLeadingHex(text), std::clamp<long long>(value, kMin, kMax)) << '"' << text << '"';
  }
}

TEST(ParseLeadingDouble, ReadsEverySpellingOfADecimalNumber) {
  EXPECT_EQ(ParseLeadingDouble("1013.25"), 1013.25);
  EXPECT_EQ(ParseLeadingDouble("-15"), -15);
  EXPECT_EQ(ParseLeadingDouble("1e3"), 1000);
  EXPECT_EQ(ParseLeadingDouble("1E-3"), 0.001);
  EXPECT_EQ(ParseLeadingDouble(".5"), 0.5);
  EXPECT_EQ(ParseLeadingDouble("5."), 5);
  EXPECT_EQ(ParseLeadingDouble("5.e1"), 50);
  EXPECT_EQ(ParseLeadingDouble("+.5e-2x"), 0.005);
  EXPECT_EQ(ParseLeadingDouble(" \t\n\v\f\r2.5"), 2.5);
}

TEST(ParseLeadingDouble, StopsAtTheFirstOtherCharacter) {
  EXPECT_EQ(ParseLeadingDouble("1.5.5"), 1.5);
  EXPECT_EQ(ParseLeadingDouble("1.5e"), 1.5);
  EXPECT_EQ(ParseLeadingDouble("1.5e+"), 1.5);
  EXPECT_EQ(ParseLeadingDouble("1.5ex"), 1.5);
  EXPECT_EQ(ParseLeadingDouble("1.5d3"), 1.5);
  EXPECT_EQ(ParseLeadingDouble("1,5"), 1);
  EXPECT_EQ(ParseLeadingDouble(std::string_view("1\0002", 3)), 1);
  EXPECT_EQ(ParseLeadingDouble(std::string_view("12.75").substr(0, 4)), 12.7);
}

TEST(ParseLeadingDouble, ReadsTextWithoutDigitsAsZero) {
  for (const char* text : {"", " ", "-", "+", ".", "-.", "+.e5", "e5", "--1", "+-1", "- 1", "abc", ",5"}) {
    EXPECT_TRUE(Same(ParseLeadingDouble(text), 0)) << text;
  }
  EXPECT_TRUE(Same(ParseLeadingDouble(std::string_view()), 0));
}

TEST(ParseLeadingDouble, KnowsDecimalTextOnly) {
  for (const char* text : {"inf", "-inf", "INFINITY", "nan", "-nan", "NAN(1)", "nan(ind)"}) {
    EXPECT_EQ(ParseLeadingDouble(text), 0) << text;
  }
  EXPECT_EQ(ParseLeadingDouble("0x10"), 0);
  EXPECT_EQ(ParseLeadingDouble("0x1p4"), 0);
  EXPECT_TRUE(Same(ParseLeadingDouble("-0x1p4"), -0.0));
}

TEST(ParseLeadingDouble, KeepsTheSignOfZero) {
  EXPECT_TRUE(Same(ParseLeadingDouble("-0"), -0.0));
  EXPECT_TRUE(Same(ParseLeadingDouble("-0e999"), -0.0));
  EXPECT_TRUE(Same(ParseLeadingDouble("0"), 0.0));
}

TEST(ParseLeadingDouble, GivesInfinityForWhatIsTooLarge) {
  EXPECT_EQ(ParseLeadingDouble("1e309"), kInfinity);
  EXPECT_EQ(ParseLeadingDouble("-1e309"), -kInfinity);
  EXPECT_EQ(ParseLeadingDouble("1.8e308"), kInfinity);
  EXPECT_EQ(ParseLeadingDouble("1e99999999999999999999"), kInfinity);
  EXPECT_EQ(ParseLeadingDouble(std::string(400, '9')), kInfinity);
  EXPECT_EQ(ParseLeadingDouble(std::string(400, '9') + ".5e-5 m"), kInfinity);
  EXPECT_EQ(ParseLeadingDouble("0." + std::string(400, '0') + "1e+800"), kInfinity);
}

TEST(ParseLeadingDouble, GivesZeroForWhatIsTooSmall) {
  EXPECT_TRUE(Same(ParseLeadingDouble("1e-400"), 0.0));
  EXPECT_TRUE(Same(ParseLeadingDouble("-1e-400"), -0.0));
  EXPECT_TRUE(Same(ParseLeadingDouble("1e-99999999999999999999"), 0.0));
  EXPECT_TRUE(Same(ParseLeadingDouble("." + std::string(400, '0') + "1"), 0.0));
  EXPECT_TRUE(Same(ParseLeadingDouble("0." + std::string(400, '0') + "1e5x"), 0.0));
  EXPECT_TRUE(Same(ParseLeadingDouble("1" + std::string(20, '0') + "e-400"), 0.0));
}

TEST(ParseLeadingDouble, ReadsTheSmallestAndLargestDoubles) {
  EXPECT_EQ(ParseLeadingDouble("1.7976931348623157e308"), std::numeric_limits<double>::max());
  EXPECT_EQ(ParseLeadingDouble("5e-324"), std::numeric_limits<double>::denorm_min());
  EXPECT_EQ(ParseLeadingDouble("2.2250738585072014e-308"), std::numeric_limits<double>::min());
}

TEST(ParseLeadingDouble, AgreesWithTheCLibraryOnNumbers) {
  Generator generator(24);
  for (int i = 0; i < 150000; ++i) {
    std::string text = generator.Text(" +-", 1) + generator.Text("0123456789", i % 50 == 0 ? 40 : 7);
    if (generator.Coin()) text += "." + generator.Text("0123456789", i % 50 == 0 ? 400 : 7);
    if (generator.Coin()) text += "e" + generator.Text("+-", 1) + generator.Text("0123456789", 3);
    ASSERT_TRUE(Same(ParseLeadingDouble(text), std::strtod(text.c_str(), nullptr))) << '"' << text << '"';
  }
}

TEST(ParseLeadingDouble, AgreesWithTheCLibraryOnAnyTextOfTheseLetters) {
  Generator generator(25);
  for (int i = 0; i < 100000; ++i) {
    const std::string text = generator.Text("0123456789.+-eE q", 10);
    ASSERT_TRUE(Same(ParseLeadingDouble(text), std::strtod(text.c_str(), nullptr))) << '"' << text << '"';
  }
}

TEST(IsDigits, IsTrueOfDigitsAndOfNothing) {
  EXPECT_TRUE(qxcm::IsDigits("0123456789"));
  EXPECT_TRUE(qxcm::IsDigits(""));
  for (const char* text : {"-1", "+1", " 1", "1 ", "1.", "a", "/", ":"}) EXPECT_FALSE(qxcm::IsDigits(text)) << text;
}

TEST(ParseDigits, StopsAtTheFirstOtherCharacterAndHoldsAtTheLimit) {
  EXPECT_EQ(qxcm::ParseDigits("42x7", 100), 42);
  EXPECT_EQ(qxcm::ParseDigits("100", 100), 100);
  EXPECT_EQ(qxcm::ParseDigits("101", 100), 100);
  EXPECT_EQ(qxcm::ParseDigits("-1", 100), 0);
  EXPECT_EQ(qxcm::ParseDigits("", 100), 0);
  EXPECT_EQ(qxcm::ParseDigits(std::string(5000, '9'), std::int64_t{1} << 59), std::int64_t{1} << 59);
}

}  // namespace
