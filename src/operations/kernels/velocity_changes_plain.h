#pragma once

#include "field/vector_field.h"
#include "platform/numeric/checked_real.h"

/// The definition of the changes of all velocities: plain loops in visiting order. `Real` is double, or CheckedReal if
/// the computation must stop at an arithmetic error.
namespace quiverion::plain {

template <class Real>
void ScaleVelocities(VectorField& field, double factorX, double factorY) {
  for (std::int32_t i = 1; i <= field.columnCount; ++i) {
    for (std::int32_t j = 1; j <= field.rowCount; ++j) {
      const Real x = Real(field.velX(i, j)) * Real(factorX);
      const Real y = Real(field.velY(i, j)) * Real(factorY);
      field.velX(i, j) = ToDouble(x);
      field.velY(i, j) = ToDouble(y);
    }
  }
}

/// Changes valid vectors only.
template <class Real>
void ShiftVelocities(VectorField& field, double shiftX, double shiftY) {
  for (std::int32_t i = 1; i <= field.columnCount; ++i) {
    for (std::int32_t j = 1; j <= field.rowCount; ++j) {
      if (field.status(i, j) <= 0) continue;
      const Real x = Real(field.velX(i, j)) + Real(shiftX);
      const Real y = Real(field.velY(i, j)) + Real(shiftY);
      field.velX(i, j) = ToDouble(x);
      field.velY(i, j) = ToDouble(y);
    }
  }
}

}  // namespace quiverion::plain
