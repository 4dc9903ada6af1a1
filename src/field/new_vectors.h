#pragma once

#include <utility>

#include "field/vector_field.h"

namespace quiverion {

/// New velocities for a field, in scratch memory: a kernel writes them, and the field takes them if nothing went wrong.
/// The elements are unspecified at first.
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

/// The same with statuses, and by how much the number of valid vectors grows.
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
