#pragma once

#include <cstdint>
#include <string>

#include "field/grid.h"

namespace quiverion {

/// The second field, which commands combine with the current one. It has no positions, header or other parts of a
/// field. Grids as in VectorField. A buffer without columns and rows is empty.
struct BufferField {
  std::string bufferFileName;  // path of the copied field; empty after a load; a statistic keeps it
  std::int32_t bufferColumnCount = 0;
  std::int32_t bufferRowCount = 0;
  Grid<double> bufferVelX;  // m/s
  Grid<double> bufferVelY;  // m/s
  Grid<std::int32_t> bufferStatus;
};

}  // namespace quiverion
