#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// One bit per vector of a record: vector k (counted from 0, column index fastest) is bit k % 8 of byte k / 8.
namespace quiverion {

using ValidBits = std::vector<unsigned char>;

/// Sets the bits of vectors whose `status` is above 0; the bits after the last vector are 0.
ValidBits PackValidBits(std::span<const std::int32_t> status);

inline bool IsValid(const ValidBits& bits, std::size_t k) {
  return (bits[k / 8] >> (k % 8) & 1) != 0;
}

}  // namespace quiverion
