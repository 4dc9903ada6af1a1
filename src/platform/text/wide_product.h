#pragma once

#include <cstdint>

namespace quiverion {

/// All 128 bits of a product.
struct WideProduct {
  std::uint64_t high, low;
};

constexpr WideProduct Multiply(std::uint64_t a, std::uint64_t b) {
  __extension__ using Wide = unsigned __int128;
  const Wide product = static_cast<Wide>(a) * b;
  return {static_cast<std::uint64_t>(product >> 64), static_cast<std::uint64_t>(product)};
}

}  // namespace quiverion
