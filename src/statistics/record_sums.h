#pragma once

#include "statistics/statistic_state.h"

/// What each pass of a statistic does with the record just read. Gives the same bits as the functions of
/// record_sums_plain.h, which define the results. Overflows and divisions by zero only set the floating-point flags;
/// nothing stops.
namespace quiverion {

/// velX, velY: sums of the velocities; status: number of fields in which the vector is valid.
void AddVelocities(StatisticState& state);

/// Adds the squares of the velocities to velX and velY.
void AddSquares(StatisticState& state);

/// Adds u * v to velY.
void AddProducts(StatisticState& state);

/// Adds u'² + v'² to velX and u' v' to velY.
void AddFluctuations(StatisticState& state);

/// Turns the record into fluctuations and adds (du'/dx)² + (du'/dy)² + dv'/dy du'/dx (1/s²) to velX, and the number of
/// samples (0 or 1) to status.
void AddDerivatives(StatisticState& state);

}  // namespace quiverion
