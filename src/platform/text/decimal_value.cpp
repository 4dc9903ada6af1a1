#include "platform/text/decimal_value.h"

#include <array>
#include <bit>
#include <cstddef>

#include "platform/text/wide_product.h"

namespace quiverion {
namespace {

// (high * 2^64 + low) * 2^exponent, the highest bit set.
struct Power {
  std::uint64_t high = 0;
  std::uint64_t low = 0;
  int exponent = 0;
};

// 10^power, exactly.
constexpr Power WholePower(std::uint64_t five, int power) {
  const int shift = std::countl_zero(five);
  return {five << shift, 0, power - shift - 64};
}

// 1 / 10^power: a quotient of 128 bits, and 1 added.
constexpr Power Reciprocal(std::uint64_t five, int power) {
  const int width = static_cast<int>(std::bit_width(five));
  Power result{0, 0, -power - 127 - width};
  std::uint64_t rest = 1;
  for (int k = 0; k < 127 + width; ++k) {
    rest *= 2;
    const bool fits = rest >= five;
    if (fits) rest -= five;
    result.high = result.high << 1 | result.low >> 63;
    result.low = result.low << 1 | (fits ? 1 : 0);
  }
  ++result.low;
  return result;
}

constexpr auto kPowers = [] {
  std::array<Power, 2 * kLargestPower + 1> powers;
  std::uint64_t five = 1;
  for (int power = 0; power <= kLargestPower; ++power, five *= 5) {
    if (power > 0) powers[static_cast<std::size_t>(kLargestPower - power)] = Reciprocal(five, power);
    powers[static_cast<std::size_t>(kLargestPower + power)] = WholePower(five, power);
  }
  return powers;
}();

}  // namespace

// The product with a reciprocal is too large by less than 2^-126 of itself. What is no double and no half between two
// doubles differs from each of them by more than 2^-118 of itself, since these have at most 54 bits and 5^27 has 63. So
// neither the error nor what is cut off below the 128 bits ever matters.
double DecimalValue(std::uint64_t digits, std::int64_t exponent) {
  if (digits == 0) return 0.0;
  const Power& power = kPowers[static_cast<std::size_t>(exponent + kLargestPower)];
  const int shift = std::countl_zero(digits);
  const WideProduct upper = Multiply(digits << shift, power.high);
  std::uint64_t low = upper.low + Multiply(digits << shift, power.low).high;
  std::uint64_t high = upper.high + (low < upper.low ? 1 : 0);
  const int missing = std::countl_zero(high);  // 0 or 1
  high = high << missing | (low >> 63 & static_cast<std::uint64_t>(missing));
  low <<= missing;

  std::uint64_t significand = high >> 11;  // 53 bits
  const std::uint64_t rest = high << 53 | (low != 0 ? 1 : 0);
  constexpr std::uint64_t half = std::uint64_t{1} << 63;
  significand += static_cast<std::uint64_t>(rest > half) | (static_cast<std::uint64_t>(rest == half) & significand);
  const int binaryExponent = power.exponent - shift - missing + 64 + 127;
  // The highest bit of the significand, or of its successor, is one more in the exponent.
  return std::bit_cast<double>((static_cast<std::uint64_t>(binaryExponent + 1022) << 52) + significand);
}

}  // namespace quiverion
