#include <algorithm>
#include <cstddef>
#include <vector>

#include "operations/kernels/compare_vectors.h"
#include "platform/numeric/bit_select.h"

namespace quiverion {
namespace {

constexpr std::int32_t kBlock = 32;  // output points that are summed side by side

// A grid with zeros in place of invalid vectors and around the columns, so that every window is inside it.
class PaddedGrid {
 public:
  PaddedGrid(const VectorField& field, const Grid<double>& source, std::int32_t pad)
      : left_(pad), stride_(static_cast<std::ptrdiff_t>(field.columnCount) + 2 * std::ptrdiff_t{pad} + kBlock) {
    elements_.assign(static_cast<std::size_t>(stride_) * static_cast<std::size_t>(field.rowCount), 0.0);
    for (std::int32_t j = 1; j <= field.rowCount; ++j) {
      double* const target = elements_.data() + (j - 1) * stride_ + left_;
      const std::int32_t* const status = field.status.Row(j);
      const double* const values = source.Row(j);
      for (std::int32_t i = 0; i < field.columnCount; ++i) target[i] = SelectOrZero(MaskOf(status[i] > 0), values[i]);
    }
  }

  const double* At(std::int32_t i, std::int32_t j) const {
    return elements_.data() + (j - 1) * stride_ + left_ + (i - 1);
  }
  std::ptrdiff_t Stride() const { return stride_; }

 private:
  std::ptrdiff_t left_, stride_;
  std::vector<double> elements_;
};

// Sums over the windows of kBlock neighbouring points, each in the order of the definition: columns from left to right,
// in each the rows upwards. `first` is the lowest row of the column of the first point; its row `ownRow` is left out.
QUIVERION_MULTI_TARGET void SumWindows(const double* first, std::ptrdiff_t stride, std::int32_t halfX,
                                       std::int32_t rows, std::int32_t ownRow, double* target) {
  double sums[kBlock] = {};
  for (std::int32_t k = -halfX; k <= halfX; ++k) {
    const double* source = first + k;
    for (std::int32_t row = 0; row < rows; ++row, source += stride) {
      if (k == 0 && row == ownRow) continue;
      for (std::int32_t b = 0; b < kBlock; ++b) sums[b] += source[b];
    }
  }
  for (std::int32_t b = 0; b < kBlock; ++b) target[b] = sums[b];
}

QUIVERION_MULTI_TARGET void DivideRow(const double* sums, const double* counts, std::int32_t columns,
                                      double* __restrict target) {
  for (std::int32_t i = 0; i < columns; ++i) {
    const Mask some = MaskOf(counts[i] > 0.0);
    target[i] = SelectOrZero(some, sums[i] / Select(some, counts[i], 1.0));
  }
}

// A quantity and the target of its means.
struct Average {
  PaddedGrid source;
  Grid<double>& target;
};

class LocalMeanRows {
 public:
  LocalMeanRows(const VectorField& field, const Magnitudes& magnitudes, Window window, CompareVectors& compare)
      : field_(field),
        window_(window),
        valid_(field.columnCount, field.rowCount,
               [&](std::int32_t i, std::int32_t j) { return field.status(i, j) > 0; }),
        counts_(static_cast<std::size_t>(field.columnCount)),
        sums_(static_cast<std::size_t>(field.columnCount) + kBlock) {
    const auto add = [&](const Grid<double>& source, Grid<double>& target) {
      averages_.push_back({PaddedGrid(field, source, window.halfX), target});
    };
    if (compare.needMagnitude) add(magnitudes.values, compare.magnitude);
    if (compare.needDirection) add(field.velX, compare.x), add(field.velY, compare.y);
  }

  void Fill(std::int32_t j) {
    const std::int32_t columns = field_.columnCount;
    for (std::int32_t i = 1; i <= columns; ++i) {
      const std::uint32_t own = field_.status(i, j) > 0 ? 1 : 0;
      counts_[static_cast<std::size_t>(i - 1)] = valid_.Around(i, j, window_) - own;
    }
    const std::int32_t lowest = std::max(1, j - window_.halfY);
    const std::int32_t highest = std::min(field_.rowCount, j + window_.halfY);
    for (const Average& average : averages_) {
      for (std::int32_t i = 1; i <= columns; i += kBlock) {
        SumWindows(average.source.At(i, lowest), average.source.Stride(), window_.halfX, highest - lowest + 1,
                   j - lowest, sums_.data() + i - 1);
      }
      DivideRow(sums_.data(), counts_.data(), columns, average.target.Row(j));
    }
  }

 private:
  const VectorField& field_;
  Window window_;
  WindowCounts valid_;
  std::vector<Average> averages_;
  std::vector<double> counts_, sums_;
};

}  // namespace

void LocalMeans(const VectorField& field, const Magnitudes& magnitudes, Window window, CompareVectors& compare) {
  LocalMeanRows rows(field, magnitudes, window, compare);
  for (std::int32_t j = 1; j <= field.rowCount; ++j) rows.Fill(j);
}

}  // namespace quiverion
