#pragma once

#include <cmath>
#include <cstdint>

#include "field/grid.h"

/// The definition of the vortex centres: plain loops in visiting order.
namespace quiverion::plain {

/// 1 for a local maximum of |S| with positive S (turning counter-clockwise), -1 for one with negative S, else 0. Only a
/// greater neighbour removes the mark. So every point of a plateau keeps it, and NaN neither gets nor removes one.
inline void MarkMaxima(const Grid<double>& strength, Grid<std::int16_t>& marks) {
  const auto isGreater = [&](std::int32_t i, std::int32_t j, double magnitude) {
    const bool inside = i >= 1 && i <= strength.Columns() && j >= 1 && j <= strength.Rows();
    return inside && std::fabs(strength(i, j)) > magnitude;
  };
  for (std::int32_t i = 1; i <= strength.Columns(); ++i) {
    for (std::int32_t j = 1; j <= strength.Rows(); ++j) {
      const double s = strength(i, j);
      std::int16_t mark = s == 0.0 ? 0 : 1;
      for (std::int32_t di = -1; di <= 1; ++di) {
        for (std::int32_t dj = -1; dj <= 1; ++dj) {
          if ((di != 0 || dj != 0) && isGreater(i + di, j + dj, std::fabs(s))) mark = 0;
        }
      }
      marks(i, j) = s < 0.0 ? static_cast<std::int16_t>(-mark) : mark;
    }
  }
}

}  // namespace quiverion::plain
