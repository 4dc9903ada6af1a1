#pragma once

#include "field/buffer_field.h"
#include "field/vector_field.h"
#include "statistics/valid_bits.h"

namespace quiverion {

/// The data of the steps of a statistic. All grids have the size of the collection.
struct StatisticState {
  VectorField& field;      // velX, velY: sums, in the end the result; status: a count per vector, in the end 1 or 0
  BufferField& buffer;     // velocities of the record just read
  ValidBits validBits;     // of that record
  double viscosity = 0.0;  // m²/s, for the dissipation

  // Mean velocities of vectors that are valid in two fields or more, else 0. Only for turbulence and dissipation.
  Grid<double> meanU = {};
  Grid<double> meanV = {};
};

}  // namespace quiverion
