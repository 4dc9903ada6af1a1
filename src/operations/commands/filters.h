#pragma once

#include "field/context.h"

namespace quiverion {

/// The commands: announce, filter, log "fertig". The Gauss kernels are binomial, the velocity profile is the mean of
/// the vector's row. They fail as ApplyFilterKernel does.
void FilterRect3x3(Context& context);
void FilterRect5x5(Context& context);
void FilterGauss3x3(Context& context);
void FilterGauss5x5(Context& context);
void FilterVelocityProfile(Context& context);

}  // namespace quiverion
