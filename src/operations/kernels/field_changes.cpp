#include "operations/kernels/field_changes.h"

#include <bit>
#include <cmath>

#include "platform/numeric/multi_target.h"

namespace quiverion {
namespace {

bool HaveSameBits(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

QUIVERION_MULTI_TARGET void CountRow(const std::int32_t* before, const std::int32_t* after, std::size_t count,
                                     FieldChanges& changes) {
  std::int32_t rejected = 0, filled = 0, valid = 0;
  for (std::size_t k = 0; k < count; ++k) {
    const std::int32_t was = before[k] > 0 ? 1 : 0, is = after[k] > 0 ? 1 : 0;
    rejected += was & ~is;
    filled += is & ~was;
    valid += is;
  }
  changes.rejected += rejected;
  changes.filled += filled;
  changes.valid += valid;
}

}  // namespace

FieldChanges CountStatusChanges(const Grid<std::int32_t>& before, const Grid<std::int32_t>& after) {
  FieldChanges changes;
  for (std::int32_t j = 1; j <= after.Rows(); ++j) {
    CountRow(before.Row(j), after.Row(j), static_cast<std::size_t>(after.Columns()), changes);
  }
  return changes;
}

FieldChanges CountChanges(const GridVectors& before, const GridVectors& after) {
  FieldChanges changes = CountStatusChanges(before.status, after.status);
  for (std::int32_t j = 1; j <= after.rowCount; ++j) {
    for (std::int32_t i = 1; i <= after.columnCount; ++i) {
      if (before.status(i, j) <= 0 || after.status(i, j) <= 0) continue;
      const double oldU = before.velX(i, j), oldV = before.velY(i, j), u = after.velX(i, j), v = after.velY(i, j);
      if (HaveSameBits(oldU, u) && HaveSameBits(oldV, v)) continue;
      ++changes.changed;
      const double length = std::hypot(u - oldU, v - oldV);
      if (!std::isfinite(length) || !(length > changes.greatest)) continue;
      changes.greatest = length;
      changes.column = i;
      changes.row = j;
    }
  }
  return changes;
}

}  // namespace quiverion
