#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "field/grid.h"
#include "platform/numeric/bit_select.h"
#include "platform/numeric/multi_target.h"

/// Differences between the neighbours of grid points, for fast kernels: row by row along the memory, across points.
namespace quiverion {

/// The grids from which differences are computed; positions in mm, velocities in m/s.
struct NeighbourGrids {
  std::span<const double> posX, posY;
  const Grid<double>& velX;
  const Grid<double>& velY;
  const Grid<std::int32_t>& status;
};

/// True if some point could use two equal positions for its difference.
inline bool HasEqualPositions(std::span<const double> positions) {
  bool equal = false;
  for (std::size_t k = 1; k < positions.size(); ++k) equal |= positions[k] == positions[k - 1];
  for (std::size_t k = 2; k < positions.size(); ++k) equal |= positions[k] == positions[k - 2];
  return equal;
}

/// One row of points with the rows below and above. `valid` is a mask per vector, as wide as the doubles that it
/// selects. A row outside the grid is represented by the row itself, with no valid vector.
struct RowInput {
  std::int32_t columns;
  const double* x;
  double y, yDown, yUp;
  const double *u, *uDown, *uUp;
  const double *v, *vDown, *vUp;
  const Mask *valid, *validDown, *validUp;
};

/// The differences at one point between its usable neighbours, with the point itself in place of an unusable one.
struct Differences {
  double dx, dy;
  double dxu, dyu, dxv, dyv;  // of u and v along x and y
};

/// Calls use(k, hasValue, differences) for the points between the first and the last column, k counted from 0.
/// `hasValue`: a valid point with a usable neighbour along both axes, or any point with four. The differences of any
/// other point are those between the point and itself, so that values that do not count cannot overflow.
template <class Use>
QUIVERION_ALWAYS_INLINE void ForInnerPoints(const RowInput& row, Use use) {
  const RowInput in = row;  // a copy cannot alias what `use` writes
  const std::int32_t last = in.columns - 1;
  for (std::int32_t i = 1; i < last; ++i) {
    Mask left = in.valid[i - 1], right = in.valid[i + 1], down = in.validDown[i], up = in.validUp[i];
    const Mask hasValue = (in.valid[i] & (left | right) & (down | up)) | (left & right & down & up);
    left &= hasValue, right &= hasValue, down &= hasValue, up &= hasValue;
    const double x = in.x[i], u = in.u[i], v = in.v[i];
    Differences d;
    d.dx = Select(right, in.x[i + 1], x) - Select(left, in.x[i - 1], x);
    d.dy = Select(up, in.yUp, in.y) - Select(down, in.yDown, in.y);
    d.dxu = Select(right, in.u[i + 1], u) - Select(left, in.u[i - 1], u);
    d.dyu = Select(up, in.uUp[i], u) - Select(down, in.uDown[i], u);
    d.dxv = Select(right, in.v[i + 1], v) - Select(left, in.v[i - 1], v);
    d.dyv = Select(up, in.vUp[i], v) - Select(down, in.vDown[i], v);
    use(i, hasValue, d);
  }
}

/// Which vectors of the last rows are valid.
class ValidRows {
 public:
  explicit ValidRows(const Grid<std::int32_t>& status) : status_(status), nothing_(Width(), 0) {
    for (auto& row : rows_) row.resize(Width());
  }

  void Fill(std::int32_t j) {
    const std::int32_t* const status = status_.Row(j);
    Mask* const row = rows_[static_cast<std::size_t>(j % 3)].data();
    for (std::size_t i = 0; i < Width(); ++i) row[i] = MaskOf(status[i] > 0);
  }

  /// Row j, which must have been filled; no vector is valid outside the grid.
  const Mask* Row(std::int32_t j) const {
    return j < 1 || j > status_.Rows() ? nothing_.data() : rows_[static_cast<std::size_t>(j % 3)].data();
  }

 private:
  std::size_t Width() const { return static_cast<std::size_t>(status_.Columns()); }

  const Grid<std::int32_t>& status_;
  std::vector<Mask> nothing_;
  std::array<std::vector<Mask>, 3> rows_;
};

/// Calls visit(j, row) for every row, with its input.
template <class Visit>
void ForEachRowInput(const NeighbourGrids& grids, Visit visit) {
  const std::int32_t rows = grids.status.Rows();
  ValidRows valid(grids.status);
  valid.Fill(1);
  for (std::int32_t j = 1; j <= rows; ++j) {
    if (j < rows) valid.Fill(j + 1);
    const std::int32_t down = j > 1 ? j - 1 : j;
    const std::int32_t up = j < rows ? j + 1 : j;
    const auto y = [&grids](std::int32_t row) { return grids.posY[static_cast<std::size_t>(row - 1)]; };
    RowInput in;
    in.columns = grids.status.Columns();
    in.x = grids.posX.data();
    in.y = y(j), in.yDown = y(down), in.yUp = y(up);
    in.u = grids.velX.Row(j), in.uDown = grids.velX.Row(down), in.uUp = grids.velX.Row(up);
    in.v = grids.velY.Row(j), in.vDown = grids.velY.Row(down), in.vUp = grids.velY.Row(up);
    in.valid = valid.Row(j), in.validDown = valid.Row(j - 1), in.validUp = valid.Row(j + 1);
    visit(j, in);
  }
}

}  // namespace quiverion
