#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "field/grid.h"

namespace quiverion::exchange {

using Values = std::vector<double, UninitialisedAllocator<double>>;

/// How the points of a file lie on a grid. The points of a row (or of a column) follow each other.
struct GridLayout {
  std::int32_t columns = 0, rows = 0;
  bool xIsFast = true;   // the first two points differ in x
  bool xAscends = true;  // in the order of the file
  bool yAscends = false;

  std::size_t FastCount() const { return static_cast<std::size_t>(xIsFast ? columns : rows); }
  std::size_t SlowCount() const { return static_cast<std::size_t>(xIsFast ? rows : columns); }
};

/// The place of a point in its file, such as "Zeile 12".
using PlaceOf = std::function<std::string(std::size_t point)>;

/// How far a position may be from where a regular grid has it, as a part of the step.
inline constexpr double kLargestDeviation = 0.02;

/// The grid of points given one by one. The coordinate that differs between the first two points is the fast one; the
/// grid's positions are those of the first row and of the first point of every row, and every other point has to agree
/// with them. Throws FormatError if the points are no whole regular grid.
GridLayout FindGrid(std::span<const double> x, std::span<const double> y, const PlaceOf& placeOf);

/// The grid of two axes: x is fast. Throws FormatError if one of them is not regular.
GridLayout GridOfAxes(std::span<const double> x, std::span<const double> y);

/// The positions of the columns and of the rows, in the order of the file.
Values ColumnPositions(const GridLayout& layout, std::span<const double> x);
Values RowPositions(const GridLayout& layout, std::span<const double> y);

}  // namespace quiverion::exchange
