#pragma once

#include "field/vector_field.h"

/// Changes of all velocities of a field. They throw SystemError 6 at an overflow: in column-by-column order, the
/// vectors before it are done, the rest is unchanged.
namespace quiverion {

/// Multiplies the components of every vector, whatever its status.
void ScaleVelocities(VectorField& field, double factorX, double factorY);

/// Adds (shiftX, shiftY) in m/s to every valid vector.
void ShiftVelocities(VectorField& field, double shiftX, double shiftY);

}  // namespace quiverion
