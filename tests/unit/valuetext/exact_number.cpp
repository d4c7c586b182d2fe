// Double arithmetic in integers.
#include "unit/valuetext/exact_number.h"

#include <cstring>

namespace qxtest {

namespace {

constexpr int kMantissaBits = 53;
constexpr std::uint64_t kHiddenBit = std::uint64_t{1} << 52;
constexpr int kBias = 1075;  // of the exponent of a whole 53-bit mantissa

int BitLength(Wide value) {
  int length = 0;
  for (; value >> length >> 8 != 0; length += 8) {
  }
  while (value >> length != 0) ++length;
  return length;
}

}  // namespace

ExactNumber::ExactNumber(double value) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  const auto field = static_cast<int>(bits >> 52 & 0x7FF);
  negative_ = bits >> 63 != 0;
  mantissa_ = (bits & (kHiddenBit - 1)) | (field == 0 ? 0 : kHiddenBit);
  exponent_ = (field == 0 ? 1 : field) - kBias;
}

ExactNumber ExactNumber::Rounded(bool negative, Wide mantissa, int exponent) {
  const int surplus = BitLength(mantissa) - kMantissaBits;
  if (surplus <= 0) return ExactNumber(negative, static_cast<std::uint64_t>(mantissa), exponent);
  const Wide half = Wide{1} << (surplus - 1);
  const Wide rest = mantissa & (2 * half - 1);
  auto kept = static_cast<std::uint64_t>(mantissa >> surplus);
  if (rest > half || (rest == half && kept % 2 == 1)) ++kept;
  return ExactNumber(negative, kept, exponent + surplus);
}

ExactNumber ExactNumber::Times(const ExactNumber& other) const {
  return Rounded(negative_ != other.negative_, Wide{mantissa_} * other.mantissa_, exponent_ + other.exponent_);
}

ExactNumber ExactNumber::HalfFurther() const {
  if (mantissa_ == 0 || exponent_ < -120) return ExactNumber(negative_, 1, -1);
  if (exponent_ > 60) return *this;
  if (exponent_ < -1) return Rounded(negative_, mantissa_ + (Wide{1} << (-1 - exponent_)), exponent_);
  return Rounded(negative_, (Wide{mantissa_} << (exponent_ + 1)) + 1, -1);
}

bool ExactNumber::overflows() const { return mantissa_ != 0 && BitLength(mantissa_) + exponent_ > 1024; }

double ExactNumber::ToDouble() const {
  std::uint64_t bits = 0;
  if (mantissa_ != 0) {
    const int shift = kMantissaBits - BitLength(mantissa_);
    const std::uint64_t whole = shift >= 0 ? mantissa_ << shift : mantissa_ >> -shift;  // 2^53 after a carry
    bits = (whole & (kHiddenBit - 1)) | static_cast<std::uint64_t>(exponent_ - shift + kBias) << 52;
  }
  bits |= std::uint64_t{negative_} << 63;
  double value = 0;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

}  // namespace qxtest
