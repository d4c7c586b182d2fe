// Angle text. The products below stay two products each: one folded factor would change last bits.
#include "commands/measure/valuetext/angle_text.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>

#include "commands/measure/valuetext/number_text.h"

namespace qxcm {

namespace {

// Tenths of an arc second.
constexpr int kSecond = 10;
constexpr int kMinute = 600;
constexpr int kDegree = 36000;
constexpr int kTurn = 12960000;

constexpr double kPi = 3.141592653589793;
constexpr double kInversePi = 0.3183098861837907;
constexpr double kUnitsPerHalfTurn = 6.48e6;
constexpr double kHalfTurnsPerUnit = 1.54320987654321e-7;

constexpr std::size_t kFractionDigits = 5;
constexpr std::int64_t kMaxDegrees = std::numeric_limits<std::int32_t>::max();

double ToRadians(std::int64_t units) { return static_cast<double>(units) * kPi * kHalfTurnsPerUnit; }

std::int64_t StepUnits(double resolution_seconds) {
  const double units = resolution_seconds * kSecond + 0.5;
  if (!(units >= 1)) return 1;  // not a number included
  return static_cast<std::int64_t>(std::min<double>(units, kTurn));
}

// The digits behind the point, padded or cut to five. False: not five digits.
bool ReadFraction(std::string_view text, bool pad, std::int64_t* value) {
  if (!pad && text.size() != kFractionDigits) return false;
  char digits[kFractionDigits] = {'0', '0', '0', '0', '0'};
  text.copy(digits, kFractionDigits);
  const std::string_view five(digits, kFractionDigits);
  *value = ParseDigits(five, kMaxDegrees);
  return IsDigits(five);
}

}  // namespace

char* FormatAngleDms(char* buffer, std::size_t size, double radians) {
  const double half = radians < 0 ? -0.5 : 0.5;
  const double units = WholePart(radians * kUnitsPerHalfTurn * kInversePi + half);
  // The remainder of doubles is exact, so an angle of any size is folded before it becomes an integer.
  const int folded = std::isfinite(units) ? static_cast<int>(std::fmod(units, kTurn)) : 0;
  const int magnitude = std::abs(folded);
  const int degrees = magnitude / kDegree;
  const int minutes = (magnitude - degrees * kDegree) / kMinute;
  const int seconds = magnitude % kMinute / kSecond;
  std::snprintf(buffer, size, "%s%d.%02d%02d%1d", folded < 0 ? "-" : "", degrees, minutes, seconds,
                magnitude % kSecond);
  return buffer;
}

double RoundAngle(double radians, double resolution_seconds) {
  // Cut, not rounded, to whole units before half a step is added: kept, though FormatAngleDms rounds.
  const double cut = -WholePart(std::fabs(radians) * kUnitsPerHalfTurn * -kInversePi);
  if (!std::isfinite(cut)) return 0;
  const std::int64_t step = StepUnits(resolution_seconds);
  // Whole multiples of both the step and the turn change nothing below; without them an integer holds any angle.
  std::int64_t units = step / 2 + static_cast<std::int64_t>(std::fmod(cut, static_cast<double>(step * kTurn)));
  units -= units % step;
  units %= kTurn;
  return ToRadians(radians < 0 ? -units : units);
}

bool ParseAngleDms(std::string_view text, bool pad_fraction, double* radians) {
  const bool negative = !text.empty() && text.front() == '-';
  if (negative || (!text.empty() && text.front() == '+')) text.remove_prefix(1);
  const std::size_t point = text.find('.');
  if (point == std::string_view::npos && !pad_fraction) return false;
  // No degrees at all read as 0, with and without a point.
  const std::string_view degrees = text.substr(0, point);
  const std::string_view behind = point == std::string_view::npos ? std::string_view() : text.substr(point + 1);
  std::int64_t fraction = 0;
  if (!IsDigits(degrees) || behind.find('.') != std::string_view::npos) return false;
  if (!ReadFraction(behind, pad_fraction, &fraction)) return false;
  const std::int64_t units = fraction % 10 + fraction / 10 % 100 * kSecond + fraction / 1000 * kMinute +
                             ParseDigits(degrees, kMaxDegrees) * kDegree;
  *radians = ToRadians(negative ? -units : units);
  return true;
}

}  // namespace qxcm
