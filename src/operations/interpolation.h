#pragma once

#include "field/context.h"

namespace quiverion {

/// Replaces every vector of status 0 by the mean of its valid neighbours (up to eight), from the edges of a hole
/// inwards: each pass fills those with the most valid neighbours, and what a pass fills counts as valid from the next
/// one on. Filled vectors get status 3; masked ones (negative status) are neither filled nor used. Keeps
/// `validVectorCount`. Throws SystemError at an arithmetic error: earlier passes are done, vectors of the current pass
/// before it (column by column) are done with status 127, the rest is as before.

/// False where vectors remain that no valid one leads to; everything else is filled.
bool Interpolate(VectorField& field);

/// The command: logs the announcement and "fertig"; what cannot be filled is logged too and sets `runHadError`.
void InterpolateInvalidVectors(Context& context);

}  // namespace quiverion
