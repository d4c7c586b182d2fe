// Random values for the exact tests: the same ones in every run, unless QX_GENERATOR_START names another start.
#ifndef QXTEST_UNIT_VALUETEXT_GENERATOR_H
#define QXTEST_UNIT_VALUETEXT_GENERATOR_H

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <random>
#include <string>
#include <string_view>

namespace qxtest {

class Generator {
 public:
  /// Prints its start, so that a failure can be repeated.
  explicit Generator(std::uint64_t start) {
    if (const char* wanted = std::getenv("QX_GENERATOR_START")) start = std::strtoull(wanted, nullptr, 10);
    std::cout << "generator start " << start << '\n';
    engine_ = std::mt19937_64(start);
  }

  /// From 0 to `last`.
  std::uint64_t UpTo(std::uint64_t last) { return std::uniform_int_distribution<std::uint64_t>(0, last)(engine_); }
  std::int64_t Between(std::int64_t first, std::int64_t last) {
    return std::uniform_int_distribution<std::int64_t>(first, last)(engine_);
  }
  double Between(double first, double last) { return std::uniform_real_distribution<double>(first, last)(engine_); }
  bool Coin() { return UpTo(1) == 1; }

  /// Any 53 bits at a power of two between two, either sign.
  double AnyMagnitude(int lowest_power, int highest_power) {
    const auto bits = static_cast<double>(UpTo((std::uint64_t{1} << 53) - 1));
    const double value = std::ldexp(bits, static_cast<int>(Between(std::int64_t{lowest_power}, highest_power)) - 53);
    return Coin() ? -value : value;
  }

  /// Up to `longest` characters of an alphabet.
  std::string Text(std::string_view alphabet, std::size_t longest) {
    std::string text(UpTo(longest), ' ');
    for (char& letter : text) letter = alphabet[UpTo(alphabet.size() - 1)];
    return text;
  }

 private:
  std::mt19937_64 engine_;
};

}  // namespace qxtest

#endif
