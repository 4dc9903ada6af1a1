#pragma once

#include "field/vector_field.h"
#include "operations/kernels/weight_matrix.h"

namespace quiverion {

/// Replaces every vector whose status is not negative by the weighted mean of the valid vectors under the kernel, as
/// they are before; status 2. This fills invalid vectors; masked ones (negative status) are neither changed nor used.
/// The kernel is cut at the border of the grid. If no valid vector lies under it, or the weights add to 0, the vector
/// keeps its velocity and gets status 0. `validVectorCount` follows. Throws SystemError at an arithmetic error: visited
/// column by column, the vectors before it are done, the rest is as before.
void ApplyFilterKernel(VectorField& field, const WeightMatrix& weights);

}  // namespace quiverion
