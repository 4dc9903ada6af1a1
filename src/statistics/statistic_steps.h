#pragma once

#include "statistics/compute_statistic.h"
#include "statistics/statistic_state.h"

namespace quiverion {

/// The steps of a kind of statistic. The first pass adds velocities and counts (AddVelocities); a kind with one pass has
/// neither of the middle steps.
struct StatisticSteps {
  void (*betweenPasses)(StatisticState& state);
  void (*addRecord)(StatisticState& state);  // second pass
  void (*finish)(StatisticState& state, double viscosity);
};

const StatisticSteps& StepsOf(StatisticKind kind);

}  // namespace quiverion
