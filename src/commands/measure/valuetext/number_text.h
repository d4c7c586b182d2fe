// Numbers as text: the one fixed-point form of the wire, and the lenient decimal conversions all commands share.
// Pure functions: any thread, no heap, no exception, and the same in every locale.
#ifndef QXCM_COMMANDS_MEASURE_VALUETEXT_NUMBER_TEXT_H
#define QXCM_COMMANDS_MEASURE_VALUETEXT_NUMBER_TEXT_H

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace qxcm {

/// A number without its fraction, toward zero; infinities and what is not a number stay. (The platform has no trunc.)
inline double WholePart(double value) {
  double whole = 0.0;
  std::modf(value, &whole);
  return whole;
}

/// Writes a number with four decimals, as "%.4f" does with a point: "12.3450". An infinite value and one that is not a
/// number leave the text empty, the wire's form of a value that is not there.
/// Returns `buffer`; the text is cut at `size` bytes, its terminating zero included.
char* FormatFixed4(char* buffer, std::size_t size, double value);

/// The integer a text begins with: blanks, a sign, decimal digits; what follows does not matter. No digits give 0.
/// A number that 32 bits cannot hold gives the nearest that they can (-2147483648 or 2147483647).
std::int32_t ParseLeadingInt(std::string_view text);

/// The same in hexadecimal, with or without "0x".
std::int32_t ParseLeadingHex(std::string_view text);

/// The decimal number a text begins with: blanks, a sign, digits with or without a point, an exponent; what follows
/// does not matter. No digits give 0, and so do "inf", "nan" and the like; "0x10" is 0 followed by text. A number too
/// large for a double gives HUGE_VAL (infinity) with its sign, one too small 0 with its sign; else the nearest double.
double ParseLeadingDouble(std::string_view text);

/// True when a text consists of the characters 0 to 9 only. An empty text does.
bool IsDigits(std::string_view text);

/// The value of the digits a text begins with, at most `limit` (at most 2^59). No digits give 0.
std::int64_t ParseDigits(std::string_view text, std::int64_t limit);

}  // namespace qxcm

#endif
