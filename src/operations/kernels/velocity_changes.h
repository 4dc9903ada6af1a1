#pragma once

#include "field/vector_field.h"

/// Changes of all velocities of a field. Throw SystemError 6 at an overflow: visited column by column, the vectors before
/// it are done, the rest is as before.
namespace quiverion {

/// Multiplies the components of every vector, whatever its status.
void ScaleVelocities(VectorField& field, double factorX, double factorY);

/// Adds (shiftX, shiftY) in m/s to every valid vector.
void ShiftVelocities(VectorField& field, double shiftX, double shiftY);

}  // namespace quiverion
