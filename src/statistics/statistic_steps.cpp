#include "statistics/statistic_steps.h"

#include <cmath>

#include "operations/kernels/mathematical.h"
#include "statistics/record_sums.h"

namespace quiverion {
namespace {

// Row by row; no point depends on the next column.
template <class Visit>
void ForEachPoint(const VectorField& field, Visit visit) {
  for (std::int32_t j = 1; j <= field.rowCount; ++j) {
    for (std::int32_t i = 1; i <= field.columnCount; ++i) visit(i, j);
  }
}

void FinishMean(StatisticState& s) {
  VectorField& f = s.field;
  ForEachPoint(f, [&f](std::int32_t i, std::int32_t j) {
    if (f.status(i, j) <= 0) return;
    const double n = f.status(i, j);
    f.velX(i, j) /= n;
    f.velY(i, j) /= n;
    f.status(i, j) = 1;
  });
}

// velX = -(sum of u)²/n, likewise velY: the second pass adds the sums of squares.
void BeginSquares(StatisticState& s) {
  VectorField& f = s.field;
  ForEachPoint(f, [&f](std::int32_t i, std::int32_t j) {
    if (f.status(i, j) < 2) return;
    const double n = f.status(i, j), u = f.velX(i, j), v = f.velY(i, j);
    f.velX(i, j) = -(u * u) / n;
    f.velY(i, j) = -(v * v) / n;
  });
}

// Calls finish(i, j, n) for vectors that are valid in n >= 2 fields; the others become invalid.
template <class Finish>
void FinishWhereTwoCount(VectorField& f, Finish finish) {
  ForEachPoint(f, [&](std::int32_t i, std::int32_t j) {
    const std::int32_t n = f.status(i, j);
    f.status(i, j) = n < 2 ? 0 : 1;
    if (n >= 2) finish(i, j, static_cast<double>(n));
  });
}

// Rounding can leave slightly less than 0 if all fields have the same velocity.
double RootOrZero(double value) {
  return value < 0.0 ? 0.0 : std::sqrt(value);
}

void FinishDeviation(StatisticState& s) {
  VectorField& f = s.field;
  FinishWhereTwoCount(f, [&f](std::int32_t i, std::int32_t j, double n) {
    f.velX(i, j) = RootOrZero(f.velX(i, j) / (n - 1.0));
    f.velY(i, j) = RootOrZero(f.velY(i, j) / (n - 1.0));
  });
}

void FinishSquares(StatisticState& s) {
  VectorField& f = s.field;
  FinishWhereTwoCount(f, [&f](std::int32_t i, std::int32_t j, double n) {
    f.velX(i, j) /= n;
    f.velY(i, j) /= n;
  });
}

// velX = product of the means.
void BeginProduct(StatisticState& s) {
  VectorField& f = s.field;
  ForEachPoint(f, [&f](std::int32_t i, std::int32_t j) {
    if (f.status(i, j) < 2) return;
    const double n = f.status(i, j);
    f.velX(i, j) = f.velX(i, j) / n * f.velY(i, j) / n;
    f.velY(i, j) = 0.0;
  });
}

void FinishProduct(StatisticState& s) {
  VectorField& f = s.field;
  FinishWhereTwoCount(f, [&f](std::int32_t i, std::int32_t j, double n) {
    f.velX(i, j) = f.velY(i, j) / n - f.velX(i, j);
    f.velY(i, j) = 0.0;
  });
}

// Stores the means and resets the sums; the counts stay.
void TakeMeans(StatisticState& s) {
  VectorField& f = s.field;
  s.meanU.Reset(f.columnCount, f.rowCount);
  s.meanV.Reset(f.columnCount, f.rowCount);
  ForEachPoint(f, [&s, &f](std::int32_t i, std::int32_t j) {
    if (f.status(i, j) < 2) return;
    s.meanU(i, j) = f.velX(i, j) / f.status(i, j);
    s.meanV(i, j) = f.velY(i, j) / f.status(i, j);
  });
  f.velX.Reset(f.columnCount, f.rowCount);
  f.velY.Reset(f.columnCount, f.rowCount);
}

// The counts of the rows below are final already (1 or 0), those of the rows above are not: there, a vector with only
// one field counts as a neighbour, with the mean 0.
void FinishTurbulenceAt(StatisticState& s, std::int32_t i, std::int32_t j) {
  VectorField& f = s.field;
  if (f.status(i, j) < 2) {
    f.status(i, j) = 0;
    return;
  }
  const double n = f.status(i, j);
  const double meanLength = VectorLength(s.meanU(i, j), s.meanV(i, j));
  f.velX(i, j) = meanLength == 0.0 ? 0.0 : std::sqrt(f.velX(i, j) / 2.0 / n) / meanLength;
  f.velY(i, j) /= n;
  const std::int32_t jm = j > 1 && f.status(i, j - 1) > 0 ? j - 1 : j;
  const std::int32_t jp = j < f.rowCount && f.status(i, j + 1) > 0 ? j + 1 : j;
  const double dy = f.posY[static_cast<std::size_t>(jp - 1)] - f.posY[static_cast<std::size_t>(jm - 1)];
  const bool hasGradient = jm != jp && dy != 0.0;
  if (hasGradient) f.velY(i, j) = (s.meanU(i, jp) - s.meanU(i, jm)) * f.velY(i, j) / dy * 1000.0;
  f.status(i, j) = hasGradient && meanLength != 0.0 ? 1 : 0;
}

void FinishTurbulence(StatisticState& s) {
  ForEachPoint(s.field, [&s](std::int32_t i, std::int32_t j) { FinishTurbulenceAt(s, i, j); });
}

void BeginDissipation(StatisticState& s) {
  TakeMeans(s);
  s.field.status.Reset(s.field.columnCount, s.field.rowCount);
}

void FinishDissipation(StatisticState& s) {
  VectorField& f = s.field;
  ForEachPoint(f, [&f, &s](std::int32_t i, std::int32_t j) {
    if (f.status(i, j) < 1) return;
    f.velX(i, j) = f.velX(i, j) / f.status(i, j) * 15.0 * s.viscosity;
    f.status(i, j) = 1;
  });
}

}  // namespace

StatisticSteps StepsOf(StatisticKind kind) {
  switch (kind) {
    case StatisticKind::mean:
      return {nullptr, nullptr, FinishMean};
    case StatisticKind::standardDeviation:
      return {BeginSquares, AddSquares, FinishDeviation};
    case StatisticKind::fluctuationSquares:
      return {BeginSquares, AddSquares, FinishSquares};
    case StatisticKind::fluctuationProduct:
      return {BeginProduct, AddProducts, FinishProduct};
    case StatisticKind::turbulence:
      return {TakeMeans, AddFluctuations, FinishTurbulence};
    case StatisticKind::dissipation:
      break;
  }
  return {BeginDissipation, AddDerivatives, FinishDissipation};
}

}  // namespace quiverion
