#pragma once

#include "field/context.h"
#include "operations/weight_matrix.h"

namespace quiverion {

/// Replaces every vector whose status is not negative by the weighted mean of the valid vectors under the kernel, as
/// they are before; status 2. Invalid vectors are filled thereby, masked ones (negative status) neither changed nor
/// used. The kernel is cut at the border of the grid. Where no valid vector lies under it, or the weights add to 0, the
/// vector keeps its velocity and gets status 0. Keeps `validVectorCount`. Throws SystemError at an arithmetic error:
/// visited column by column, the vectors before it are done, the rest as before.
void ApplyFilterKernel(VectorField& field, const WeightMatrix& weights);

/// The commands: announce, filter, log "fertig". The Gauss kernels are binomial, the velocity profile is the mean of
/// the vector's row. Errors as above.
void FilterRect3x3(Context& context);
void FilterRect5x5(Context& context);
void FilterGauss3x3(Context& context);
void FilterGauss5x5(Context& context);
void FilterVelocityProfile(Context& context);

}  // namespace quiverion
