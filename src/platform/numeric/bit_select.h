#pragma once

#include <bit>
#include <cstdint>

#include "platform/numeric/multi_target.h"

/// Selection without branches: a branch would prevent vector instructions in the loops of the kernels.
namespace quiverion {

/// All bits set or none.
using Mask = std::uint64_t;

QUIVERION_ALWAYS_INLINE Mask MaskOf(bool condition) {
  return condition ? ~Mask{0} : Mask{0};
}

/// `chosen` if all bits of the mask are set, `other` if none is.
QUIVERION_ALWAYS_INLINE double Select(Mask mask, double chosen, double other) {
  return std::bit_cast<double>((std::bit_cast<Mask>(chosen) & mask) | (std::bit_cast<Mask>(other) & ~mask));
}

/// `value` if all bits of the mask are set, else +0.0.
QUIVERION_ALWAYS_INLINE double SelectOrZero(Mask mask, double value) {
  return std::bit_cast<double>(std::bit_cast<Mask>(value) & mask);
}

}  // namespace quiverion
