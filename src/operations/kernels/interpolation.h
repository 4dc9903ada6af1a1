#pragma once

#include "field/vector_field.h"

namespace quiverion {

/// Replaces every vector of status 0 by the mean of its valid neighbours (up to eight), from the edges of a hole
/// inwards. Each pass fills those with the most valid neighbours; they count as valid from the next pass on. Filled
/// vectors get status 3 and count in `validVectorCount`; masked ones (negative status) are neither filled nor used.
/// False if vectors remain that cannot be reached from a valid one; all others are filled. Throws SystemError at an
/// arithmetic error: earlier passes are done, vectors of the current pass before it (column by column) are filled with
/// status 127, the rest is unchanged.
bool Interpolate(VectorField& field);

}  // namespace quiverion
