#pragma once

#include <cstdint>

#include "field/vector_field.h"

namespace quiverion {

/// What has happened to the vectors between two states of a field, counted in grid points. "Valid" is a status > 0.
struct FieldChanges {
  std::int64_t rejected = 0;         // valid before, not after
  std::int64_t filled = 0;           // valid after, not before
  std::int64_t changed = 0;          // valid in both, with other bits of the velocity
  std::int64_t valid = 0;            // after
  double greatest = 0.0;             // m/s, the longest finite difference of the changed vectors
  std::int32_t column = 0, row = 0;  // where it is, the first in row order; 0 if there is none
};

/// Both states must have the same grid size.
FieldChanges CountChanges(const GridVectors& before, const GridVectors& after);

/// The numbers of rejected, filled and valid vectors alone, from statuses of the same size.
FieldChanges CountStatusChanges(const Grid<std::int32_t>& before, const Grid<std::int32_t>& after);

}  // namespace quiverion
