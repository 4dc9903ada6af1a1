#pragma once

#include "field/vector_field.h"
#include "operations/kernels/weight_matrix.h"

namespace quiverion {

/// Replaces every vector whose status is not negative by the weighted mean of the original valid vectors under the
/// kernel, with status 2. This fills invalid vectors; masked ones (negative status) are neither changed nor used. The
/// kernel is cut off at the border of the grid. If there is no valid vector under it, or the weights add up to 0, the
/// vector keeps its velocity and gets status 0. Updates `validVectorCount`. Throws SystemError at an arithmetic error:
/// in column-by-column order, the vectors before it are done, the others unchanged.
void ApplyFilterKernel(VectorField& field, const WeightMatrix& weights);

}  // namespace quiverion
