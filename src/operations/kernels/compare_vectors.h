#pragma once

#include <cstdint>
#include <vector>

#include "field/vector_field.h"
#include "operations/kernels/faulty_vectors.h"

/// The compare vectors of a whole field at once, for the search for faulty vectors. Each has the same bits as in the
/// plain loops. If the window contains a vector whose magnitude overflows, it is unspecified.
namespace quiverion {

/// The magnitudes of the valid vectors, 0 for the others.
struct Magnitudes {
  Grid<double> values;
  bool haveNaN = false;  // a velocity in the file is NaN
};

Magnitudes MagnitudesOf(const VectorField& field);

/// One compare vector per grid point; 0 if there is none. Only what the criteria need is computed.
struct CompareVectors {
  bool needMagnitude = false;
  bool needDirection = false;
  Grid<double> magnitude;  // m/s
  Grid<double> x, y;       // m/s

  explicit CompareVectors(const FaultyVectorCriteria& criteria)
      : needMagnitude(criteria.magnitudeDeviation), needDirection(criteria.directionDeviation) {}

  /// Room for a field; the elements are unspecified.
  void Resize(std::int32_t columns, std::int32_t rows) {
    if (needMagnitude) magnitude.ResetUninitialised(columns, rows);
    if (needDirection) x.ResetUninitialised(columns, rows), y.ResetUninitialised(columns, rows);
  }
};

/// Half widths of a window, not greater than the field.
struct Window {
  std::int32_t halfX, halfY;
};

/// The mean over the valid vectors of each point's window, without the point itself.
void LocalMeans(const VectorField& field, const Magnitudes& magnitudes, Window window, CompareVectors& compare);

/// The median by magnitude of the same vectors. Windows of 3x3 and 5x5 use a sorting network, all others ranks.
void Medians(const VectorField& field, const Magnitudes& magnitudes, Window window, CompareVectors& compare);
void MediansByRank(const VectorField& field, const Magnitudes& magnitudes, Window window, CompareVectors& compare);

/// The median of one point as the selection sort of the plain loops finds it, but faster.
void MedianBySelectionSort(const VectorField& field, const Magnitudes& magnitudes, Window window, std::int32_t i,
                           std::int32_t j, CompareVectors& compare);

/// Counts the marked points in a window.
class WindowCounts {
 public:
  /// `isMarked(column, row)` is true for marked points.
  template <class IsMarked>
  WindowCounts(std::int32_t columns, std::int32_t rows, IsMarked isMarked)
      : columns_(columns), rows_(rows), width_(static_cast<std::size_t>(columns) + 1) {
    sums_.assign(width_ * (static_cast<std::size_t>(rows) + 1), 0);
    for (std::int32_t j = 1; j <= rows; ++j) {
      std::uint32_t inRow = 0;
      for (std::int32_t i = 1; i <= columns; ++i) {
        inRow += isMarked(i, j) ? 1 : 0;
        sums_[At(i, j)] = sums_[At(i, j - 1)] + inRow;
      }
    }
  }

  /// The count for the window around (i, j), cut off at the border, including the point itself.
  std::uint32_t Around(std::int32_t i, std::int32_t j, Window window) const {
    const std::int32_t i1 = i > window.halfX ? i - window.halfX - 1 : 0;
    const std::int32_t j1 = j > window.halfY ? j - window.halfY - 1 : 0;
    const std::int32_t i2 = columns_ - i < window.halfX ? columns_ : i + window.halfX;
    const std::int32_t j2 = rows_ - j < window.halfY ? rows_ : j + window.halfY;
    return sums_[At(i2, j2)] - sums_[At(i1, j2)] - sums_[At(i2, j1)] + sums_[At(i1, j1)];
  }

 private:
  std::size_t At(std::int32_t i, std::int32_t j) const {
    return static_cast<std::size_t>(j) * width_ + static_cast<std::size_t>(i);
  }

  std::int32_t columns_, rows_;
  std::size_t width_;
  std::vector<std::uint32_t> sums_;  // of the points up to column i and row j; differences are correct modulo 2^32
};

}  // namespace quiverion
