#pragma once

#include <cstdint>

#include "field/grid.h"

namespace quiverion::plain {

/// The neighbours used for the differences at a grid point: columns im, ip and rows jm, jp. Each is the next one or, if
/// that is invalid or outside the grid, that of the point itself.
struct Neighbours {
  std::int32_t im, ip, jm, jp;
  bool haveValue;  // both pairs differ, and the point is valid or all four are other points
};

inline Neighbours NeighboursOf(const Grid<std::int32_t>& status, std::int32_t i, std::int32_t j) {
  const auto valid = [&status](std::int32_t column, std::int32_t row) { return status(column, row) > 0; };
  Neighbours n{};
  n.im = i > 1 && valid(i - 1, j) ? i - 1 : i;
  n.ip = i < status.Columns() && valid(i + 1, j) ? i + 1 : i;
  n.jm = j > 1 && valid(i, j - 1) ? j - 1 : j;
  n.jp = j < status.Rows() && valid(i, j + 1) ? j + 1 : j;
  const bool allFour = n.im != i && n.ip != i && n.jm != j && n.jp != j;
  n.haveValue = n.im != n.ip && n.jm != n.jp && (valid(i, j) || allFour);
  return n;
}

}  // namespace quiverion::plain
