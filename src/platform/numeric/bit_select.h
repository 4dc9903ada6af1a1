#pragma once

#include <bit>
#include <cstdint>

#include "platform/numeric/multi_target.h"

/// Choices without branches: a branch would keep a kernel's loop scalar.
namespace quiverion {

/// All bits set or none.
using Mask = std::uint64_t;

QUIVERION_ALWAYS_INLINE Mask MaskOf(bool condition) {
  return condition ? ~Mask{0} : Mask{0};
}

/// `chosen` where the mask has all bits, `other` where it has none.
QUIVERION_ALWAYS_INLINE double Select(Mask mask, double chosen, double other) {
  return std::bit_cast<double>((std::bit_cast<Mask>(chosen) & mask) | (std::bit_cast<Mask>(other) & ~mask));
}

/// `value` where the mask has all bits, else +0.0.
QUIVERION_ALWAYS_INLINE double SelectOrZero(Mask mask, double value) {
  return std::bit_cast<double>(std::bit_cast<Mask>(value) & mask);
}

}  // namespace quiverion
