#pragma once

#include <cstdint>
#include <string>

#include "field/grid.h"

namespace quiverion {

/// The second field, which commands combine with the current one. Positions, header and the rest of a field are not
/// kept. Grids as in VectorField; a buffer without columns and rows is empty.
struct BufferField {
  std::string bufferFileName;  // path of the field that was copied; empty behind a load from a file
  std::int32_t bufferColumnCount = 0;
  std::int32_t bufferRowCount = 0;
  Grid<double> bufferVelX;  // m/s
  Grid<double> bufferVelY;  // m/s
  Grid<std::int32_t> bufferStatus;
};

}  // namespace quiverion
