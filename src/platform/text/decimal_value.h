#pragma once

#include <cstdint>

namespace quiverion {

/// The powers of ten that DecimalValue knows: 5^27 is the last one below 2^63.
inline constexpr std::int64_t kLargestPower = 27;

/// digits * 10^exponent, correctly rounded, an exact half to the even neighbour. The exponent is between -kLargestPower
/// and kLargestPower.
double DecimalValue(std::uint64_t digits, std::int64_t exponent);

}  // namespace quiverion
