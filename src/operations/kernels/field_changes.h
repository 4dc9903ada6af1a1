#pragma once

#include <cstdint>
#include <vector>

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

/// Which vectors of a field are valid.
struct ValidFlags {
  std::vector<unsigned char> flags;  // 0 or 1 for each, in the order of the grid
  std::int64_t valid = 0;            // how many are 1
};

/// The same numbers compared with `before`, which becomes that of `after`: faster than with a copy of the statuses. If
/// `before` is of a field of another size, that counts as one without valid vectors.
FieldChanges UpdateValidFlags(ValidFlags& before, const Grid<std::int32_t>& after);

}  // namespace quiverion
