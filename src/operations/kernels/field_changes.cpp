#include "operations/kernels/field_changes.h"

#include <algorithm>
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

// Sums of bytes, which the compiler can add side by side: a block has at most 255 vectors.
QUIVERION_MULTI_TARGET void UpdateBlock(const std::int32_t* after, std::size_t count, unsigned char* flags,
                                        FieldChanges& changes) {
  unsigned char rejected = 0, filled = 0, valid = 0;
  for (std::size_t k = 0; k < count; ++k) {
    const unsigned char was = flags[k], is = after[k] > 0 ? 1 : 0;
    rejected = static_cast<unsigned char>(rejected + (was & ~is));
    filled = static_cast<unsigned char>(filled + (is & ~was));
    valid = static_cast<unsigned char>(valid + is);
    flags[k] = is;
  }
  changes.rejected += rejected;
  changes.filled += filled;
  changes.valid += valid;
}

}  // namespace

FieldChanges UpdateValidFlags(ValidFlags& flags, const Grid<std::int32_t>& after) {
  constexpr std::size_t block = 192;
  const auto status = after.Values();
  if (flags.size() != status.size()) flags.assign(status.size(), 0);
  FieldChanges changes;
  for (std::size_t k = 0; k < status.size(); k += block) {
    UpdateBlock(status.data() + k, std::min(block, status.size() - k), flags.data() + k, changes);
  }
  return changes;
}

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
