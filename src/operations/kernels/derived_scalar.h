#pragma once

#include "field/vector_field.h"

/// Vorticity, divergence and squared swirling strength on the grid of a field, from difference quotients of its
/// velocities.
///
/// Neighbours of a point are the next columns and rows; one that is invalid or outside the grid is replaced by the
/// point itself, which makes the difference one-sided. A point without any usable neighbour along one axis gets 0. So
/// does an invalid point, unless all four of its neighbours exist and are valid. Positions are in mm and velocities in
/// m/s, so every quotient has the factor 1000.
namespace quiverion {

/// derivedScalar = dv/dx - du/dy in 1/s. Changes nothing else. Throws SystemError at an arithmetic error (two equal
/// positions are error 11): in column-by-column order, the points before it have their new value, the others the old
/// one.
void CalcVorticity(VectorField& field);

/// derivedScalar = du/dx + dv/dy in 1/s. Errors as CalcVorticity.
void CalcDivergence(VectorField& field);

/// derivedScalar = square of the imaginary part of the velocity gradient's complex eigenvalues in 1/s², 0 if they are
/// real, negative if the flow turns clockwise (du/dy >= dv/dx). Errors as CalcVorticity. (Zhou, Adrian, Balachandar,
/// Kendall, J. Fluid Mech. 387, 1999: swirling strength.)
void CalcSwirlingStrength(VectorField& field);

}  // namespace quiverion
