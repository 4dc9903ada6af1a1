#include "operations/kernels/vortex_maxima.h"

#include <array>
#include <cmath>
#include <vector>

#include "platform/numeric/multi_target.h"

namespace quiverion {
namespace {

// The greater number; the second one if the first is NaN.
QUIVERION_ALWAYS_INLINE double Greater(double a, double b) {
  return a > b ? a : b;
}

// Magnitudes of the rows around row j. Beyond both ends of a row and outside the grid they are 0, the smallest value,
// so that missing neighbours remove no mark.
class MagnitudeRows {
 public:
  explicit MagnitudeRows(const Grid<double>& strength) : strength_(strength), outside_(Width() + 2, 0.0) {
    rows_.fill(outside_);
  }

  void Fill(std::int32_t j) {
    const double* const row = strength_.Row(j);
    double* const target = rows_[static_cast<std::size_t>(j % 3)].data() + 1;
    for (std::size_t i = 0; i < Width(); ++i) target[i] = std::fabs(row[i]);
  }

  // Row j, which must have been filled; element 0 is before its first point.
  const double* Row(std::int32_t j) const {
    return j < 1 || j > strength_.Rows() ? outside_.data() : rows_[static_cast<std::size_t>(j % 3)].data();
  }

 private:
  std::size_t Width() const { return static_cast<std::size_t>(strength_.Columns()); }

  const Grid<double>& strength_;
  std::vector<double> outside_;
  std::array<std::vector<double>, 3> rows_;
};

// The greatest magnitude of each column of three points; never NaN. All rows have `width` elements.
QUIVERION_MULTI_TARGET void GreatestOfColumns(std::size_t width, const double* down, const double* row,
                                              const double* up, double* __restrict target) {
  for (std::size_t i = 0; i < width; ++i) target[i] = Greater(up[i], Greater(row[i], Greater(down[i], 0.0)));
}

// `greatest` and `magnitude` begin one element before the first point. Here a point is its own neighbour, which changes
// nothing: it is not greater than itself.
QUIVERION_MULTI_TARGET void MarkRow(std::size_t columns, const double* strength, const double* magnitude,
                                    const double* greatest, std::int16_t* __restrict marks) {
  for (std::size_t i = 0; i < columns; ++i) {
    const double neighbour = Greater(greatest[i], Greater(greatest[i + 1], greatest[i + 2]));
    const bool isMaximum = !(neighbour > magnitude[i + 1]) & (strength[i] != 0.0);
    const int sign = strength[i] < 0.0 ? -1 : 1;
    marks[i] = static_cast<std::int16_t>(isMaximum ? sign : 0);
  }
}

}  // namespace

void MarkMaxima(const Grid<double>& strength, Grid<std::int16_t>& marks) {
  marks.ResetUninitialised(strength.Columns(), strength.Rows());
  const auto columns = static_cast<std::size_t>(strength.Columns());
  std::vector<double> greatest(columns + 2);
  MagnitudeRows rows(strength);
  if (strength.Rows() > 0) rows.Fill(1);
  for (std::int32_t j = 1; j <= strength.Rows(); ++j) {
    if (j < strength.Rows()) rows.Fill(j + 1);
    GreatestOfColumns(columns + 2, rows.Row(j - 1), rows.Row(j), rows.Row(j + 1), greatest.data());
    MarkRow(columns, strength.Row(j), rows.Row(j), greatest.data(), marks.Row(j));
  }
}

}  // namespace quiverion
