#pragma once

#include "field/context.h"

/// The commands that change geometry or velocities of the current field as a whole. Each logs its announcement and
/// "fertig". They throw SystemError 6 at an overflow: everything before it in the given order is done, the rest is
/// unchanged; velocities are visited column by column.
namespace quiverion {

/// New coordinate = factor * old one + shift; new velocity component = factor * old one.
struct CoordinateTransformation {
  double fakX = 1.0;
  double deltaX = 0.0;  // mm
  double fakY = 1.0;
  double deltaY = 0.0;  // mm
  double fakVecX = 1.0;
  double fakVecY = 1.0;
};

/// Transforms, in this order, the positions, the Galilei point, the streamlines in use, the recorded shift, and the
/// velocities of every vector, whatever its status. A factor of zero is applied like any other.
void TransformCoordinates(Context& context, const CoordinateTransformation& trafo);

/// Reverses the order of the columns (mirrorX) and of the rows (mirrorY) together with their positions. Velocity
/// components keep their signs; derivedScalar stays.
void MirrorField(Context& context, bool mirrorX, bool mirrorY);

/// Adds (x, y) in m/s to every valid vector. The recorded velocity removed from the field changes by the opposite
/// amount, and the Galilei point is cleared.
void AddConstantVector(Context& context, double x, double y);
void SubtractConstantVector(Context& context, double x, double y);

}  // namespace quiverion
