#pragma once

#include "field/context.h"
#include "operations/kernels/faulty_vectors.h"

namespace quiverion {

/// The command: logs the announcement and "fertig" (only the announcement if no criterion is selected). Errors as
/// RejectFaultyVectors.
void FindFaultyVectors(Context& context, const FaultyVectorCriteria& criteria);

}  // namespace quiverion
