#pragma once

#include "field/vector_field.h"

namespace quiverion {

/// Replaces every vector of status 0 by the mean of its valid neighbours (up to eight), from the edges of a hole
/// inwards: each pass fills those with the most valid neighbours, and what a pass fills counts as valid from the next
/// one on. Filled vectors get status 3 and add to `validVectorCount`; masked ones (negative status) are neither filled
/// nor used. False if vectors remain that no valid one leads to; everything else is filled. Throws SystemError at an
/// arithmetic error: earlier passes are done, vectors of the current pass before it (column by column) are done with
/// status 127, the rest is as before.
bool Interpolate(VectorField& field);

}  // namespace quiverion
