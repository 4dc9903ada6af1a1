#pragma once

#include <optional>

#include "field/vector_field.h"

namespace quiverion {

/// What a step has changed, as a field: velocities after minus before, positions and statuses as after. A vector that
/// was invalid before counts with the velocity that the field kept for it. None if the grids are not at the same place.
std::optional<VectorField> DifferenceOf(const VectorField& before, const VectorField& after);

}  // namespace quiverion
