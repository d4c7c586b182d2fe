// Number text.
#include "commands/measure/valuetext/number_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>

namespace qxcm {

namespace {

constexpr std::string_view kBlanks = " \t\n\v\f\r";
constexpr std::string_view kDigits = "0123456789";
constexpr int kDecimals = 4;
// Sign, digits, a separator of up to 16 bytes, decimals, zero.
constexpr std::size_t kLongestFixed4 = 1 + std::numeric_limits<double>::max_exponent10 + 1 + 16 + kDecimals + 1;

// Takes blanks and a sign off the front of a text; true when the sign is "-".
bool TakeSign(std::string_view* text) {
  text->remove_prefix(std::min(text->find_first_not_of(kBlanks), text->size()));
  const bool negative = !text->empty() && text->front() == '-';
  if (negative || (!text->empty() && text->front() == '+')) text->remove_prefix(1);
  return negative;
}

// Whether a number that no double can hold is too large for it, not too small: digits, then maybe an exponent.
bool IsTooLarge(std::string_view number) {
  const std::size_t exponent = std::min(number.find_first_of("eE"), number.size());
  const std::string_view digits = number.substr(0, exponent);
  const auto point = static_cast<std::int64_t>(std::min(digits.find('.'), digits.size()));
  const auto first = static_cast<std::int64_t>(digits.find_first_of("123456789"));
  const std::string_view power = number.substr(std::min(exponent + 1, number.size()));
  return point - first + ParseLeadingInt(power) > 0;
}

}  // namespace

char* FormatFixed4(char* buffer, std::size_t size, double value) {
  if (!std::isfinite(value)) {
    std::snprintf(buffer, size, "%s", "");
    return buffer;
  }
  char text[kLongestFixed4];
  const int length = std::snprintf(text, sizeof text, "%.*f", kDecimals, value);
  // Between the whole digits and the last four stands the separator of the application's locale.
  const auto whole = static_cast<int>(std::strspn(text, "-0123456789"));
  std::snprintf(buffer, size, "%.*s.%s", whole, text, text + length - kDecimals);
  return buffer;
}

std::int32_t ParseLeadingInt(std::string_view text) {
  constexpr std::int64_t kMax = std::numeric_limits<std::int32_t>::max();
  const bool negative = TakeSign(&text);
  const std::int64_t value = ParseDigits(text, negative ? kMax + 1 : kMax);
  return static_cast<std::int32_t>(negative ? -value : value);
}

std::int32_t ParseLeadingHex(std::string_view text) {
  constexpr std::uint64_t kMax = std::numeric_limits<std::int32_t>::max();
  constexpr int kBase = 16;
  const bool negative = TakeSign(&text);
  const bool prefixed = text.substr(0, 2) == "0x" || text.substr(0, 2) == "0X";
  if (prefixed) text.remove_prefix(2);  // without a digit behind it is a zero all the same
  std::uint64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, kBase);
  if (error == std::errc::invalid_argument) return 0;
  const std::uint64_t limit = negative ? kMax + 1 : kMax;
  if (error == std::errc::result_out_of_range || value > limit) value = limit;
  const auto number = static_cast<std::int64_t>(value);
  return static_cast<std::int32_t>(negative ? -number : number);
}

double ParseLeadingDouble(std::string_view text) {
  const bool negative = TakeSign(&text);
  if (text.find_first_of("0123456789.") != 0) return 0;  // "inf" and "nan" too
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error == std::errc::invalid_argument) return 0;
  if (error == std::errc::result_out_of_range) {
    value = IsTooLarge(text.substr(0, static_cast<std::size_t>(end - text.data()))) ? HUGE_VAL : 0;
  }
  return negative ? -value : value;
}

bool IsDigits(std::string_view text) { return text.find_first_not_of(kDigits) == std::string_view::npos; }

std::int64_t ParseDigits(std::string_view text, std::int64_t limit) {
  std::int64_t value = 0;
  for (const char digit : text) {
    if (digit < '0' || digit > '9') break;
    value = std::min(value * 10 + (digit - '0'), limit);
  }
  return value;
}

}  // namespace qxcm
