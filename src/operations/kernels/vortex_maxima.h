#pragma once

#include <cstdint>

#include "field/grid.h"

namespace quiverion {

/// Marks the local maxima of |strength| as plain::MarkMaxima does: 1 if the strength is positive, -1 if it is negative,
/// else 0. `marks` gets the size of `strength`.
void MarkMaxima(const Grid<double>& strength, Grid<std::int16_t>& marks);

}  // namespace quiverion
