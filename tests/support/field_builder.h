#pragma once

#include <cstdint>
#include <random>

#include "field/vector_field.h"

namespace quiverion::test {

/// A field of the given size with positions 1, 2, ... mm, all vectors valid (status 1) and at rest.
inline VectorField MakeField(std::int32_t columns, std::int32_t rows) {
  VectorField field;
  CreateArrays(field, columns, rows);
  for (std::int32_t i = 1; i <= columns; ++i) field.posX[static_cast<std::size_t>(i - 1)] = i;
  for (std::int32_t j = 1; j <= rows; ++j) field.posY[static_cast<std::size_t>(j - 1)] = j;
  for (std::int32_t& status : field.status.Values()) status = 1;
  return field;
}

/// Sets every velocity from the position: `u(x, y)` and `v(x, y)` take mm and return m/s.
template <class U, class V>
void SetVelocities(VectorField& field, U u, V v) {
  for (std::int32_t j = 1; j <= field.rowCount; ++j) {
    for (std::int32_t i = 1; i <= field.columnCount; ++i) {
      const double x = field.posX[static_cast<std::size_t>(i - 1)];
      const double y = field.posY[static_cast<std::size_t>(j - 1)];
      field.velX(i, j) = u(x, y);
      field.velY(i, j) = v(x, y);
    }
  }
}

/// Uniform in [low, high) from raw generator output: the same on every platform.
inline double Uniform(std::mt19937_64& random, double low, double high) {
  return low + (high - low) * (static_cast<double>(random() >> 11) * 0x1p-53);
}

}  // namespace quiverion::test
