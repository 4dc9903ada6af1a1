// Works across output points, each sum in the order of the definition.
#include "operations/kernels/filter_kernel.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

#include "field/new_vectors.h"
#include "operations/kernels/filters_plain.h"
#include "platform/numeric/bit_select.h"
#include "platform/numeric/float_errors.h"

namespace quiverion {
namespace {

// A row of vectors as the sums need them: 0 in place of invalid vectors, and as many zeros on both sides as the kernel
// extends beyond the border. Adding 0 changes no sum, because a sum that starts at +0.0 is never -0.0.
struct SourceRow {
  std::vector<double> u, v;
  std::vector<double> valid;  // 1 or 0

  explicit SourceRow(std::size_t width) : u(width), v(width), valid(width) {}
};

QUIVERION_MULTI_TARGET void FillRow(const std::int32_t* status, const double* velX, const double* velY,
                                    std::size_t count, double* __restrict u, double* __restrict v,
                                    double* __restrict valid) {
  for (std::size_t i = 0; i < count; ++i) {
    const Mask mask = MaskOf(status[i] > 0);
    u[i] = SelectOrZero(mask, velX[i]);
    v[i] = SelectOrZero(mask, velY[i]);
    valid[i] = SelectOrZero(mask, 1.0);
  }
}

// The source rows under the kernel: a ring buffer, filled as the output proceeds.
class SourceRows {
 public:
  SourceRows(const VectorField& field, const WeightMatrix& weights)
      : field_(field),
        left_(static_cast<std::size_t>(std::max(0, -weights.FirstK()))),
        nothing_(Width(weights)),
        ring_(static_cast<std::size_t>(std::min(weights.Rows(), field.rowCount)), nothing_) {}

  // Makes the rows up to `j` available.
  void FillUpTo(std::int32_t j) {
    for (; filled_ < std::min(j, field_.rowCount); ++filled_) {
      SourceRow& row = ring_[static_cast<std::size_t>(filled_) % ring_.size()];
      FillRow(field_.status.Row(filled_ + 1), field_.velX.Row(filled_ + 1), field_.velY.Row(filled_ + 1), Columns(),
              row.u.data() + left_, row.v.data() + left_, row.valid.data() + left_);
    }
  }

  const SourceRow& Row(std::int32_t j) const {
    return j < 1 || j > field_.rowCount ? nothing_ : ring_[static_cast<std::size_t>(j - 1) % ring_.size()];
  }

  // The index of column 1 in a source row.
  std::size_t Left() const { return left_; }
  std::size_t Columns() const { return static_cast<std::size_t>(field_.columnCount); }

 private:
  std::size_t Width(const WeightMatrix& weights) const {
    return left_ + Columns() + static_cast<std::size_t>(std::max(0, weights.LastK()));
  }

  const VectorField& field_;
  std::size_t left_;
  SourceRow nothing_;
  std::vector<SourceRow> ring_;
  std::int32_t filled_ = 0;
};

// The new row: a new vector if the old one may change and the weights add up to more than nothing.
struct RowTarget {
  std::size_t count;
  const std::int32_t* status;
  const double *oldU, *oldV;
  double *u, *v, *sumW;

  RowTarget(const VectorField& field, std::int32_t j, std::vector<double>& sums, NewVectors& result)
      : count(static_cast<std::size_t>(field.columnCount)),
        status(field.status.Row(j)),
        oldU(field.velX.Row(j)),
        oldV(field.velY.Row(j)),
        u(result.velX.Row(j)),
        v(result.velY.Row(j)),
        sumW(sums.data()) {}
};

// Calls sums(i, u, v, w) for every point and divides; the divisor is replaced if there is nothing to divide.
template <class Sums>
QUIVERION_ALWAYS_INLINE void DivideRow(const RowTarget& target, Sums sums) {
  const RowTarget in = target;  // a copy cannot alias what is written
  double* __restrict u = in.u, * __restrict v = in.v, * __restrict w = in.sumW;
  QUIVERION_INDEPENDENT_STEPS
  for (std::size_t i = 0; i < in.count; ++i) {
    double sumU = 0.0, sumV = 0.0, sumW = 0.0;
    sums(i, sumU, sumV, sumW);
    const Mask change = MaskOf(in.status[i] >= 0) & MaskOf(sumW != 0.0);
    const double divisor = Select(change, sumW, 1.0);
    u[i] = Select(change, sumU / divisor, in.oldU[i]);
    v[i] = Select(change, sumV / divisor, in.oldV[i]);
    w[i] = sumW;
  }
}

// The rows under a kernel of L rows; each pointer is at the first column of the kernel for output column 1.
template <std::size_t L>
struct KernelRows {
  const double *u[L], *v[L], *valid[L];
};

// All terms of a point in registers; the weights are in the order of the sums.
template <std::size_t L, std::size_t... T>
QUIVERION_ALWAYS_INLINE void FilterSmall(const KernelRows<L>& kernelRows, const double* weights,
                                         const RowTarget& target, std::index_sequence<T...> /*terms*/) {
  const KernelRows<L> rows = kernelRows;
  const double factors[] = {weights[T]...};
  DivideRow(target, [&](std::size_t i, double& u, double& v, double& w) QUIVERION_LAMBDA_INLINE {
    ((u += factors[T] * rows.u[T % L][i + T / L]), ...);
    ((v += factors[T] * rows.v[T % L][i + T / L]), ...);
    ((w += factors[T] * rows.valid[T % L][i + T / L]), ...);
  });
}

QUIVERION_MULTI_TARGET_CALL(Filter3x3, (const KernelRows<3>& rows, const double* weights, const RowTarget& target),
                            (rows, weights, target), FilterSmall(rows, weights, target, std::make_index_sequence<9>()))
QUIVERION_MULTI_TARGET_CALL(Filter5x5, (const KernelRows<5>& rows, const double* weights, const RowTarget& target),
                            (rows, weights, target), FilterSmall(rows, weights, target, std::make_index_sequence<25>()))

template <std::size_t L>
KernelRows<L> RowsUnder(const SourceRows& source, const WeightMatrix& weights, std::int32_t j) {
  KernelRows<L> rows;
  for (std::size_t l = 0; l < L; ++l) {
    const SourceRow& row = source.Row(j + weights.FirstL() + static_cast<std::int32_t>(l));
    rows.u[l] = row.u.data(), rows.v[l] = row.v.data(), rows.valid[l] = row.valid.data();
  }
  return rows;
}

QUIVERION_MULTI_TARGET void FindFilled(const double* sumW, std::size_t count, std::int32_t* __restrict isFilled) {
  for (std::size_t i = 0; i < count; ++i) isFilled[i] = static_cast<std::int32_t>(sumW[i] != 0.0 ? 1.0 : 0.0);
}

// Writes the new statuses of a row; returns by how much the number of valid vectors grows.
QUIVERION_MULTI_TARGET std::int32_t StatusRow(const std::int32_t* status, const std::int32_t* isFilled,
                                              std::size_t count, std::int32_t* __restrict target) {
  std::int32_t gained = 0, lost = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const std::int32_t old = status[i], filled = isFilled[i];
    target[i] = old < 0 ? old : 2 * filled;
    gained += old == 0 ? filled : 0;
    lost += old > 0 ? 1 - filled : 0;
  }
  return gained - lost;
}

// `filter` is Filter3x3 or Filter5x5, L its number of rows.
template <std::size_t L>
void FilterRows(const VectorField& field, const WeightMatrix& weights,
                void (*filter)(const KernelRows<L>&, const double*, const RowTarget&), NewVectors& result) {
  SourceRows source(field, weights);
  std::vector<double> sumW(source.Columns());
  std::vector<std::int32_t> isFilled(source.Columns());
  for (std::int32_t j = 1; j <= field.rowCount; ++j) {
    source.FillUpTo(j + weights.LastL());
    const RowTarget target(field, j, sumW, result);
    filter(RowsUnder<L>(source, weights, j), weights.Values().data(), target);
    FindFilled(target.sumW, target.count, isFilled.data());
    result.gained += StatusRow(target.status, isFilled.data(), target.count, result.status.Row(j));
  }
}

// A kernel of one row with equal weights that covers the whole row from every position, so that all vectors of a row
// have the same sums in the same order.
struct RowMean {
  double u, v;
  bool isFilled;
};

constexpr std::size_t kRowsAtOnce = 4;  // side by side, because each sum waits for its previous addition

// The terms of a row, u and v alternating, 0 for invalid vectors; returns the number of valid ones.
QUIVERION_MULTI_TARGET std::int32_t WeightedRow(const VectorField& field, std::int32_t j, double weight,
                                                double* __restrict terms) {
  const auto count = static_cast<std::size_t>(field.columnCount);
  const std::int32_t* const status = field.status.Row(j);
  const double *const velX = field.velX.Row(j), *const velY = field.velY.Row(j);
  std::int32_t valid = 0;
  for (std::size_t i = 0; i < count; ++i) valid += status[i] > 0 ? 1 : 0;
  for (std::size_t i = 0; i < count; ++i) {
    const Mask mask = MaskOf(status[i] > 0);
    terms[2 * i] = weight * SelectOrZero(mask, velX[i]);
    terms[2 * i + 1] = weight * SelectOrZero(mask, velY[i]);
  }
  return valid;
}

class RowAverages {
 public:
  RowAverages(const VectorField& field, double weight)
      : field_(field),
        weight_(weight),
        columns_(static_cast<std::size_t>(field.columnCount)),
        sumOfWeights_(columns_ + 1, 0.0),
        terms_(kRowsAtOnce * 2 * columns_, 0.0) {
    for (std::size_t n = 1; n <= columns_; ++n) sumOfWeights_[n] = sumOfWeights_[n - 1] + weight;
  }

  std::vector<RowMean> Take() {
    constexpr auto step = static_cast<std::int32_t>(kRowsAtOnce);
    std::vector<RowMean> means;
    for (std::int32_t j = 1; j <= field_.rowCount; j += step) {
      const std::int32_t rows = std::min(step, field_.rowCount - j + 1);
      double sumW[kRowsAtOnce] = {};
      for (std::int32_t r = 0; r < rows; ++r) {
        const std::int32_t valid =
            WeightedRow(field_, j + r, weight_, &terms_[static_cast<std::size_t>(r) * 2 * columns_]);
        sumW[r] = sumOfWeights_[static_cast<std::size_t>(valid)];
      }
      AddUp(sumW, rows, means);
    }
    return means;
  }

 private:
  void AddUp(const double (&sumW)[kRowsAtOnce], std::int32_t rows, std::vector<RowMean>& means) const {
    double sums[kRowsAtOnce][2] = {};
    for (std::size_t i = 0; i < columns_; ++i) {
      for (std::size_t r = 0; r < kRowsAtOnce; ++r) {
        const double* const term = &terms_[2 * (r * columns_ + i)];
        sums[r][0] += term[0];
        sums[r][1] += term[1];
      }
    }
    for (std::int32_t r = 0; r < rows; ++r) {
      means.push_back(sumW[r] != 0.0 ? RowMean{sums[r][0] / sumW[r], sums[r][1] / sumW[r], true} : RowMean{});
    }
  }

  const VectorField& field_;
  double weight_;
  std::size_t columns_;
  std::vector<double> sumOfWeights_;  // of n vectors, added one by one
  std::vector<double> terms_;         // of the rows computed side by side
};

// Writes the mean into a row; returns by how much the number of valid vectors grows.
QUIVERION_MULTI_TARGET std::int32_t SpreadMean(const RowMean& mean, std::size_t count, std::int32_t* __restrict status,
                                               double* __restrict velX, double* __restrict velY) {
  const double u = mean.u, v = mean.v;
  for (std::size_t i = 0; i < count; ++i) {
    const Mask change = MaskOf(status[i] >= 0);
    velX[i] = Select(change, u, velX[i]);
    velY[i] = Select(change, v, velY[i]);
  }
  std::int32_t gained = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const std::int32_t old = status[i];
    status[i] = old < 0 ? old : 2;
    gained += old == 0 ? 1 : 0;
  }
  return gained;
}

// A row without valid vectors or weight: its vectors become invalid and keep their velocities.
std::int32_t Invalidate(std::int32_t* status, std::size_t count) {
  std::int32_t gained = 0;
  for (std::size_t i = 0; i < count; ++i) {
    if (status[i] <= 0) continue;
    status[i] = 0;
    --gained;
  }
  return gained;
}

void SpreadMeans(VectorField& field, const std::vector<RowMean>& means) {
  const auto count = static_cast<std::size_t>(field.columnCount);
  for (std::int32_t j = 1; j <= field.rowCount; ++j) {
    const RowMean& mean = means[static_cast<std::size_t>(j - 1)];
    std::int32_t* const status = field.status.Row(j);
    ChangeValidCount(field, mean.isFilled ? SpreadMean(mean, count, status, field.velX.Row(j), field.velY.Row(j))
                                          : Invalidate(status, count));
  }
}

bool CoversWholeRows(const VectorField& field, const WeightMatrix& weights) {
  const std::int32_t reach = field.columnCount - 1;
  const auto& values = weights.Values();
  return weights.FirstL() == 0 && weights.LastL() == 0 && weights.FirstK() == -reach && weights.LastK() == reach &&
         std::all_of(values.begin(), values.end(), [&](double w) { return w == values.front(); });
}

// False if a floating-point flag was raised; then nothing has changed.
bool FilterWholeRows(VectorField& field, double weight) {
  std::vector<RowMean> means;
  if (RaisesFloatError([&] { means = RowAverages(field, weight).Take(); })) return false;
  SpreadMeans(field, means);
  return true;
}

// The same.
template <std::size_t L>
bool FilterSquare(VectorField& field, const WeightMatrix& weights,
                  void (*filter)(const KernelRows<L>&, const double*, const RowTarget&)) {
  NewVectors result(field);
  if (RaisesFloatError([&] { FilterRows<L>(field, weights, filter, result); })) return false;
  result.SwapInto(field);
  return true;
}

bool IsSquare(const WeightMatrix& weights, std::int32_t half) {
  return weights.FirstK() == -half && weights.LastK() == half && weights.FirstL() == -half && weights.LastL() == half;
}

// The kernels that the commands make. False for all others, too.
bool FilterFast(VectorField& field, const WeightMatrix& weights) {
  const auto isFinite = [](double w) { return std::isfinite(w); };  // 0 times infinity or NaN is not 0
  if (!std::ranges::all_of(weights.Values(), isFinite)) return false;
  if (CoversWholeRows(field, weights)) return FilterWholeRows(field, weights.Values().front());
  if (IsSquare(weights, 1)) return FilterSquare<3>(field, weights, Filter3x3);
  if (IsSquare(weights, 2)) return FilterSquare<5>(field, weights, Filter5x5);
  return false;
}

}  // namespace

void ApplyFilterKernel(VectorField& field, const WeightMatrix& weights) {
  if (!FilterFast(field, weights)) plain::ApplyFilterKernel<CheckedReal>(field, weights);
}

}  // namespace quiverion
