#pragma once

#include "statistics/compute_statistic.h"
#include "statistics/statistic_state.h"

namespace quiverion {

/// The steps of a kind of statistic after its first pass, which adds velocities and counts (AddVelocities). If there is
/// no second pass, the first two are null.
struct StatisticSteps {
  void (*betweenPasses)(StatisticState& state);
  void (*addRecord)(StatisticState& state);
  void (*finish)(StatisticState& state);
};

StatisticSteps StepsOf(StatisticKind kind);

}  // namespace quiverion
