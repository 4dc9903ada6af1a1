#pragma once

#include <algorithm>
#include <cstdint>

#include "field/vector_field.h"
#include "platform/numeric/checked_real.h"

/// The definition of the interpolation: plain loops in visiting order, a scan of the whole field per pass. `Real` is
/// double, or CheckedReal if the computation must stop at an arithmetic error.
namespace quiverion::plain {

inline constexpr std::int32_t kFilled = 3;
inline constexpr std::int32_t kFilledInThisPass = 127;  // not yet a neighbour

/// Calls visit(column, row) for the neighbourhood of (i, j), cut off at the border, column by column, including the
/// point itself.
template <class Visit>
void ForEachNeighbour(const VectorField& f, std::int32_t i, std::int32_t j, Visit visit) {
  for (std::int32_t column = std::max(1, i - 1); column <= std::min(f.columnCount, i + 1); ++column) {
    for (std::int32_t row = std::max(1, j - 1); row <= std::min(f.rowCount, j + 1); ++row) visit(column, row);
  }
}

/// Fills (i, j) from its valid neighbours. False if it has none.
template <class Real>
bool FillFromNeighbours(VectorField& field, std::int32_t i, std::int32_t j) {
  Real sumU = 0.0, sumV = 0.0;
  std::int32_t count = 0;
  ForEachNeighbour(field, i, j, [&](std::int32_t column, std::int32_t row) {
    const std::int32_t status = field.status(column, row);
    if (status <= 0 || status == kFilledInThisPass) return;
    sumU = sumU + Real(field.velX(column, row));
    sumV = sumV + Real(field.velY(column, row));
    ++count;
  });
  if (count == 0) return false;
  const Real u = sumU / Real(count), v = sumV / Real(count);
  field.velX(i, j) = ToDouble(u);
  field.velY(i, j) = ToDouble(v);
  field.status(i, j) = kFilledInThisPass;
  ChangeValidCount(field, 1);
  return true;
}

/// False if invalid vectors remain that cannot be reached from a valid one.
template <class Real>
bool Interpolate(VectorField& field) {
  Grid<std::int32_t> counts(field.columnCount, field.rowCount);
  for (;;) {
    std::int32_t invalid = 0, largest = 0;
    for (std::int32_t j = 1; j <= field.rowCount; ++j) {
      for (std::int32_t i = 1; i <= field.columnCount; ++i) {
        counts(i, j) = 0;
        if (field.status(i, j) == kFilledInThisPass) field.status(i, j) = kFilled;
        if (field.status(i, j) != 0) continue;
        ++invalid;
        ForEachNeighbour(field, i, j, [&](std::int32_t column, std::int32_t row) {
          if (field.status(column, row) > 0) ++counts(i, j);
        });
        largest = std::max(largest, counts(i, j));
      }
    }
    if (invalid == 0) return true;
    for (std::int32_t i = 1; i <= field.columnCount; ++i) {
      for (std::int32_t j = 1; j <= field.rowCount; ++j) {
        if (field.status(i, j) != 0 || counts(i, j) != largest) continue;
        if (!FillFromNeighbours<Real>(field, i, j)) return false;
      }
    }
  }
}

}  // namespace quiverion::plain
