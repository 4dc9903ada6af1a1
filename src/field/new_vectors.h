#pragma once

#include <utility>

#include "field/vector_field.h"

namespace quiverion {

/// Velocities that a kernel writes beside those of a field, for the field to take once nothing has gone wrong. The
/// elements are unspecified at first.
struct NewVelocities {
  Grid<double> velX, velY;  // m/s

  explicit NewVelocities(const VectorField& field) {
    velX.ResetUninitialised(field.columnCount, field.rowCount);
    velY.ResetUninitialised(field.columnCount, field.rowCount);
  }
  void SwapInto(VectorField& field) {
    std::swap(field.velX, velX);
    std::swap(field.velY, velY);
  }
};

/// The same with statuses, and how many vectors are valid more than before.
struct NewVectors : NewVelocities {
  Grid<std::int32_t> status;
  std::int64_t gained = 0;

  explicit NewVectors(const VectorField& field) : NewVelocities(field) {
    status.ResetUninitialised(field.columnCount, field.rowCount);
  }
  void SwapInto(VectorField& field) {
    NewVelocities::SwapInto(field);
    std::swap(field.status, status);
    ChangeValidCount(field, gained);
  }
};

}  // namespace quiverion
