// The fast form of ApplyFilterKernel: across output points, each sum in the order of the definition.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

#include "operations/filters.h"
#include "operations/filters_plain.h"
#include "platform/bit_select.h"
#include "platform/float_errors.h"

namespace quiverion {
namespace {

// A row of vectors as the sums take them, 0 where the vector is not valid, with as many zeros on both sides as the
// kernel reaches over the border. Adding 0 changes no sum: one that starts at +0.0 never is -0.0.
struct SourceRow {
  std::vector<double> u, v;
  std::vector<double> valid;  // 1 or 0

  explicit SourceRow(std::size_t width) : u(width), v(width), valid(width) {}
};

// What is written, and how many vectors are valid more than before.
struct Result {
  Grid<double> velX, velY;
  Grid<std::int32_t> status;
  std::int32_t gained = 0;
};

// The sums of one output row.
struct RowSums {
  std::vector<double> u, v, w;

  explicit RowSums(std::size_t width) : u(width), v(width), w(width) {}
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

// The source rows under the kernel: a ring, filled as the output moves on.
class SourceRows {
 public:
  SourceRows(const VectorField& field, const WeightMatrix& weights)
      : field_(field),
        left_(static_cast<std::size_t>(std::max(0, -weights.FirstK()))),
        nothing_(Width(weights)),
        ring_(static_cast<std::size_t>(std::min(weights.Rows(), field.rowCount)), nothing_) {}

  // Rows up to `j` are there afterwards.
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

  // Of column 1 in a source row.
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

// The sums over a kernel of K columns and L rows, all terms of a point in registers. Row pointers stand at the kernel's
// first column of output column 1; the weights are in the order of the sums.
template <std::size_t K, std::size_t L, std::size_t... T>
QUIVERION_ALWAYS_INLINE void SumSmallKernel(std::index_sequence<T...> /*terms*/, const double* const (&rows)[3][L],
                                            const double* weights, std::size_t count, double* const (&sums)[3]) {
  const double w[] = {weights[T]...};
  const auto sum = [count](const double* const(&source)[L], const double(&factor)[K * L], double* __restrict target) {
    for (std::size_t i = 0; i < count; ++i) {
      double total = 0.0;
      ((total += factor[T] * source[T % L][i + T / L]), ...);
      target[i] = total;
    }
  };
  for (int q = 0; q < 3; ++q) sum(rows[q], w, sums[q]);
}

QUIVERION_MULTI_TARGET void Sum3x3(const double* const (&rows)[3][3], const double* weights, std::size_t count,
                                   double* const (&sums)[3]) {
  SumSmallKernel<3, 3>(std::make_index_sequence<9>(), rows, weights, count, sums);
}

QUIVERION_MULTI_TARGET void Sum5x5(const double* const (&rows)[3][5], const double* weights, std::size_t count,
                                   double* const (&sums)[3]) {
  SumSmallKernel<5, 5>(std::make_index_sequence<25>(), rows, weights, count, sums);
}

template <std::size_t L, class Sum>
void SumSmall(const SourceRows& source, const WeightMatrix& weights, std::int32_t j, RowSums& sums, Sum sum) {
  const double* rows[3][L];
  for (std::size_t l = 0; l < L; ++l) {
    const SourceRow& row = source.Row(j + weights.FirstL() + static_cast<std::int32_t>(l));
    rows[0][l] = row.u.data();
    rows[1][l] = row.v.data();
    rows[2][l] = row.valid.data();
  }
  sum(rows, weights.Values().data(), source.Columns(), {sums.u.data(), sums.v.data(), sums.w.data()});
}

QUIVERION_MULTI_TARGET void AddTerm(double weight, const double* source, std::size_t count, double* __restrict sum) {
  for (std::size_t i = 0; i < count; ++i) sum[i] += weight * source[i];
}

// Any kernel, term by term.
void SumAny(const SourceRows& source, const WeightMatrix& weights, std::int32_t j, RowSums& sums) {
  for (auto* sum : {&sums.u, &sums.v, &sums.w}) std::fill(sum->begin(), sum->end(), 0.0);
  for (std::int32_t k = weights.FirstK(); k <= weights.LastK(); ++k) {
    const auto column = static_cast<std::size_t>(static_cast<std::int64_t>(source.Left()) + k);
    for (std::int32_t l = weights.FirstL(); l <= weights.LastL(); ++l) {
      const SourceRow& row = source.Row(j + l);
      AddTerm(weights(k, l), row.u.data() + column, source.Columns(), sums.u.data());
      AddTerm(weights(k, l), row.v.data() + column, source.Columns(), sums.v.data());
      AddTerm(weights(k, l), row.valid.data() + column, source.Columns(), sums.w.data());
    }
  }
}

// The new vectors of a row from its sums; the divisor is made safe where there is nothing to divide. `isFilled` becomes
// 1 or 0.
QUIVERION_MULTI_TARGET void DivideRow(const VectorField& field, std::int32_t j, const RowSums& sums, Result& result,
                                      std::int32_t* __restrict isFilled) {
  const auto count = static_cast<std::size_t>(field.columnCount);
  const std::int32_t* const status = field.status.Row(j);
  const double *const oldU = field.velX.Row(j), *const oldV = field.velY.Row(j);
  const double *const sumU = sums.u.data(), *const sumV = sums.v.data(), *const sumW = sums.w.data();
  double* __restrict u = result.velX.Row(j), * __restrict v = result.velY.Row(j);
  for (std::size_t i = 0; i < count; ++i) {
    const Mask change = MaskOf(status[i] >= 0) & MaskOf(sumW[i] != 0.0);
    const double divisor = Select(change, sumW[i], 1.0);
    u[i] = Select(change, sumU[i] / divisor, oldU[i]);
    v[i] = Select(change, sumV[i] / divisor, oldV[i]);
  }
  for (std::size_t i = 0; i < count; ++i) isFilled[i] = static_cast<std::int32_t>(sumW[i] != 0.0 ? 1.0 : 0.0);
}

// The same where all vectors have the same mean.
QUIVERION_MULTI_TARGET void SpreadRow(const VectorField& field, std::int32_t j, double meanU, double meanV,
                                      Result& result) {
  const auto count = static_cast<std::size_t>(field.columnCount);
  const std::int32_t* const status = field.status.Row(j);
  const double *const oldU = field.velX.Row(j), *const oldV = field.velY.Row(j);
  double* __restrict u = result.velX.Row(j), * __restrict v = result.velY.Row(j);
  for (std::size_t i = 0; i < count; ++i) {
    const Mask change = MaskOf(status[i] >= 0);
    u[i] = Select(change, meanU, oldU[i]);
    v[i] = Select(change, meanV, oldV[i]);
  }
}

// The new statuses of a row; returns how many vectors are valid more than before.
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

void FilterRows(const VectorField& field, const WeightMatrix& weights, Result& result) {
  SourceRows source(field, weights);
  RowSums sums(source.Columns());
  std::vector<std::int32_t> isFilled(source.Columns());
  const auto isSquare = [&weights](std::int32_t half) {
    return weights.FirstK() == -half && weights.LastK() == half && weights.FirstL() == -half && weights.LastL() == half;
  };
  for (std::int32_t j = 1; j <= field.rowCount; ++j) {
    source.FillUpTo(j + weights.LastL());
    if (isSquare(1)) {
      SumSmall<3>(source, weights, j, sums, Sum3x3);
    } else if (isSquare(2)) {
      SumSmall<5>(source, weights, j, sums, Sum5x5);
    } else {
      SumAny(source, weights, j, sums);
    }
    DivideRow(field, j, sums, result, isFilled.data());
    result.gained += StatusRow(field.status.Row(j), isFilled.data(), isFilled.size(), result.status.Row(j));
  }
}

constexpr std::size_t kProfileRows = 4;  // sums that run side by side, each waits for its own last addition only

// The sums of whole rows, from left to right, of rows j, j + 1, ...
void SumWholeRows(const SourceRows& source, std::int32_t j, double weight, double (&totals)[kProfileRows][3]) {
  const SourceRow* rows[kProfileRows];
  for (std::size_t r = 0; r < kProfileRows; ++r) rows[r] = &source.Row(j + static_cast<std::int32_t>(r));
  double u[kProfileRows] = {}, v[kProfileRows] = {}, w[kProfileRows] = {};
  for (std::size_t i = source.Left(), end = i + source.Columns(); i < end; ++i) {
    for (std::size_t r = 0; r < kProfileRows; ++r) {
      u[r] += weight * rows[r]->u[i];
      v[r] += weight * rows[r]->v[i];
      w[r] += weight * rows[r]->valid[i];
    }
  }
  for (std::size_t r = 0; r < kProfileRows; ++r) totals[r][0] = u[r], totals[r][1] = v[r], totals[r][2] = w[r];
}

// A kernel of one row with equal weights that reaches over the whole row from every place: all vectors of a row have
// the same sums in the same order.
void FilterWholeRows(const VectorField& field, double weight, Result& result) {
  constexpr auto step = static_cast<std::int32_t>(kProfileRows);
  SourceRows source(field, WeightMatrix(0, 0, 0, step - 1, weight));
  std::vector<std::int32_t> isFilled(source.Columns());
  for (std::int32_t j = 1; j <= field.rowCount; j += step) {
    source.FillUpTo(j + step - 1);
    double totals[kProfileRows][3];
    SumWholeRows(source, j, weight, totals);
    for (std::int32_t r = 0; r < step && j + r <= field.rowCount; ++r) {
      const auto& [sumU, sumV, sumW] = totals[r];
      std::fill(isFilled.begin(), isFilled.end(), sumW != 0.0 ? 1 : 0);
      if (sumW != 0.0) {
        SpreadRow(field, j + r, sumU / sumW, sumV / sumW, result);
      } else {
        std::copy_n(field.velX.Row(j + r), isFilled.size(), result.velX.Row(j + r));
        std::copy_n(field.velY.Row(j + r), isFilled.size(), result.velY.Row(j + r));
      }
      result.gained += StatusRow(field.status.Row(j + r), isFilled.data(), isFilled.size(), result.status.Row(j + r));
    }
  }
}

bool CoversWholeRows(const VectorField& field, const WeightMatrix& weights) {
  const std::int32_t reach = field.columnCount - 1;
  const auto& values = weights.Values();
  return weights.FirstL() == 0 && weights.LastL() == 0 && weights.FirstK() == -reach && weights.LastK() == reach &&
         std::all_of(values.begin(), values.end(), [&](double w) { return w == values.front(); });
}

// The part of the kernel that can lie on the grid at all: the rest adds nothing anywhere.
bool ClipToField(const VectorField& field, WeightMatrix& weights) {
  const std::int32_t columns = field.columnCount, rows = field.rowCount;
  const std::int32_t k0 = std::max(weights.FirstK(), 1 - columns), k1 = std::min(weights.LastK(), columns - 1);
  const std::int32_t l0 = std::max(weights.FirstL(), 1 - rows), l1 = std::min(weights.LastL(), rows - 1);
  if (k0 > k1 || l0 > l1) return false;
  if (k1 - k0 + 1 == weights.Columns() && l1 - l0 + 1 == weights.Rows()) return true;
  WeightMatrix clipped(k0, k1, l0, l1, 0.0);
  for (std::int32_t k = k0; k <= k1; ++k) {
    for (std::int32_t l = l0; l <= l1; ++l) clipped(k, l) = weights(k, l);
  }
  weights = std::move(clipped);
  return true;
}

void FilterFast(const VectorField& field, const WeightMatrix& weights, Result& result) {
  if (CoversWholeRows(field, weights)) {
    FilterWholeRows(field, weights.Values().front(), result);
  } else {
    FilterRows(field, weights, result);
  }
}

}  // namespace

void ApplyFilterKernel(VectorField& field, const WeightMatrix& weights) {
  WeightMatrix kernel = weights;
  const auto finite = [](double w) { return std::isfinite(w); };  // 0 times anything else would not be 0
  if (ClipToField(field, kernel) && std::all_of(kernel.Values().begin(), kernel.Values().end(), finite)) {
    Result result;
    result.velX.ResetUninitialised(field.columnCount, field.rowCount);
    result.velY.ResetUninitialised(field.columnCount, field.rowCount);
    result.status.ResetUninitialised(field.columnCount, field.rowCount);
    if (!RaisesFloatError([&] { FilterFast(field, kernel, result); })) {
      std::swap(field.velX, result.velX);
      std::swap(field.velY, result.velY);
      std::swap(field.status, result.status);
      field.validVectorCount += result.gained;
      return;
    }
  }
  plain::ApplyFilterKernel<CheckedReal>(field, weights);
}

}  // namespace quiverion
