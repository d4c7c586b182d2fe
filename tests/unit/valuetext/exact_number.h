// Double arithmetic worked out in integers, bit by bit, without the processor's floating point: the second opinion on
// everything the angle and number texts compute. An ExactNumber is a whole mantissa times a power of two.
#ifndef QXTEST_UNIT_VALUETEXT_EXACT_NUMBER_H
#define QXTEST_UNIT_VALUETEXT_EXACT_NUMBER_H

#include <cstdint>

namespace qxtest {

__extension__ typedef unsigned __int128 Wide;

class ExactNumber {
 public:
  /// A double, taken apart into its bits.
  explicit ExactNumber(double value);
  ExactNumber(bool negative, std::uint64_t mantissa, int exponent)
      : negative_(negative), mantissa_(mantissa), exponent_(exponent) {}

  /// The exact product, the exact sum with a half away from zero: each rounded to the nearest 53 bits, a tie to even.
  ExactNumber Times(const ExactNumber& other) const;
  ExactNumber HalfFurther() const;

  /// Its digits before the binary point, as an integer type that is wide enough.
  template <typename Integer>
  Integer Whole() const {
    if (exponent_ <= -64) return 0;
    if (exponent_ < 0) return Integer(mantissa_ >> -exponent_);
    return Integer(mantissa_) << exponent_;
  }

  bool negative() const { return negative_; }
  /// Beyond the largest double.
  bool overflows() const;
  /// The double it is, put together from its bits. It must be zero or in the range of the normal doubles.
  double ToDouble() const;

 private:
  static ExactNumber Rounded(bool negative, Wide mantissa, int exponent);

  bool negative_;
  std::uint64_t mantissa_;
  int exponent_;
};

}  // namespace qxtest

#endif
