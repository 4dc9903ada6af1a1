#pragma once

#include <array>

namespace quiverion {

/// The significant decimal digits of a number: d.ddd... times 10^exponent, correctly rounded, exact halves to the even
/// digit.
struct DecimalDigits {
  std::array<char, 32> digits;  // characters, '0' after the last significant one
  int count = 0;                // significant digits without trailing zeros, at least 1
  int exponent = 0;
};

/// The first `digits` (1 to 15) significant digits of a finite number above 0. Does not allocate.
DecimalDigits DigitsOf(double magnitude, int digits);

}  // namespace quiverion
