#pragma once

#include "field/context.h"

namespace quiverion {

/// The command: logs the announcement and "fertig"; what cannot be filled is logged, too, and sets `runHadError`.
/// Errors as Interpolate.
void InterpolateInvalidVectors(Context& context);

}  // namespace quiverion
