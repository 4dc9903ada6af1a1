#pragma once

#include <cstdint>

namespace quiverion {

/// All 128 bits of a product.
struct WideProduct {
  std::uint64_t high, low;
};

constexpr WideProduct Multiply(std::uint64_t a, std::uint64_t b) {
#if defined(__SIZEOF_INT128__)
  __extension__ using Wide = unsigned __int128;
  const Wide product = static_cast<Wide>(a) * b;
  return {static_cast<std::uint64_t>(product >> 64), static_cast<std::uint64_t>(product)};
#else
  constexpr std::uint64_t lowHalf = 0xFFFFFFFF;
  const std::uint64_t low = (a & lowHalf) * (b & lowHalf);
  const std::uint64_t first = (a >> 32) * (b & lowHalf) + (low >> 32);
  const std::uint64_t second = (a & lowHalf) * (b >> 32) + (first & lowHalf);
  return {(a >> 32) * (b >> 32) + (first >> 32) + (second >> 32), second << 32 | (low & lowHalf)};
#endif
}

}  // namespace quiverion
