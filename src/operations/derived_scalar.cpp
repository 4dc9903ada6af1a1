#include "operations/derived_scalar.h"

#include <array>
#include <utility>
#include <vector>

#include "operations/derived_scalar_plain.h"
#include "operations/multi_target.h"
#include "platform/checked_real.h"
#include "platform/float_errors.h"

namespace quiverion {
namespace {

// One row of points with the rows below and above. `valid` is 1.0 or 0.0 per vector: doubles select doubles
// without a change of width. A row outside the grid is the row itself with nothing valid in it.
struct RowInput {
  std::int32_t columns;
  const double* x;
  double y, yDown, yUp;
  const double *u, *uDown, *uUp;
  const double *v, *vDown, *vUp;
  const double *valid, *validDown, *validUp;
};

// The points between the first and the last column. The same operations on the same operands as the plain
// loops, so the same bits; a point without a value runs on 0 / 1 and gives +0.0. Quotients are computed even
// where a neighbour is missing, from selected operands, so no lane divides by zero that the plain loops would
// not divide.
template <class Formula>
QUIVERION_ALWAYS_INLINE void InnerPoints(const RowInput& in, double* __restrict target, Formula formula) {
  const double* const __restrict x = in.x;
  const double* const __restrict u = in.u, * const __restrict v = in.v;
  const double* const __restrict uDown = in.uDown, * const __restrict uUp = in.uUp;
  const double* const __restrict vDown = in.vDown, * const __restrict vUp = in.vUp;
  const double* const __restrict valid = in.valid, * const __restrict validDown = in.validDown, * const __restrict validUp = in.validUp;
  const double y = in.y, yDown = in.yDown, yUp = in.yUp;
  const std::int32_t last = in.columns - 1;
  for (std::int32_t i = 1; i < last; ++i) {
    const double left = valid[i - 1], right = valid[i + 1], down = validDown[i], up = validUp[i];
    const double weight = valid[i] * (left + right) * (down + up) + (left * right) * (down * up);
    const bool hasValue = weight > 0.0;
    const double dx = (right > 0.0 ? x[i + 1] : x[i]) - (left > 0.0 ? x[i - 1] : x[i]);
    const double dy = (up > 0.0 ? yUp : y) - (down > 0.0 ? yDown : y);
    const double dxu = (right > 0.0 ? u[i + 1] : u[i]) - (left > 0.0 ? u[i - 1] : u[i]);
    const double dyu = (up > 0.0 ? uUp[i] : u[i]) - (down > 0.0 ? uDown[i] : u[i]);
    const double dxv = (right > 0.0 ? v[i + 1] : v[i]) - (left > 0.0 ? v[i - 1] : v[i]);
    const double dyv = (up > 0.0 ? vUp[i] : v[i]) - (down > 0.0 ? vDown[i] : v[i]);
    const double safeDx = hasValue ? dx : 1.0, safeDy = hasValue ? dy : 1.0;
    const double dudx = (hasValue ? dxu : 0.0) * 1000.0 / safeDx;
    const double dudy = (hasValue ? dyu : 0.0) * 1000.0 / safeDy;
    const double dvdx = (hasValue ? dxv : 0.0) * 1000.0 / safeDx;
    const double dvdy = (hasValue ? dyv : 0.0) * 1000.0 / safeDy;
    target[i] = formula(dudx, dudy, dvdx, dvdy);
  }
}

struct VorticityFormula {
  QUIVERION_ALWAYS_INLINE double operator()(double /*dudx*/, double dudy, double dvdx,
                                            double /*dvdy*/) const {
    return dvdx - dudy;
  }
};

struct SwirlFormula {
  QUIVERION_ALWAYS_INLINE double operator()(double dudx, double dudy, double dvdx, double dvdy) const {
    const double halfTrace = (dudx + dvdy) / 2.0;
    const double q = halfTrace * halfTrace - (dudx * dvdy - dudy * dvdx);
    const double s = q > 0.0 || q == 0.0 ? 0.0 : -q;
    const double signedS = dudy < dvdx ? s : -s;
    return s == 0.0 ? 0.0 : signedS;
  }
};

QUIVERION_MULTI_TARGET void InnerVorticity(const RowInput& in, double* target) {
  InnerPoints(in, target, VorticityFormula{});
}

QUIVERION_MULTI_TARGET void InnerSwirl(const RowInput& in, double* target) {
  InnerPoints(in, target, SwirlFormula{});
}

// Which vectors of the last rows are valid, as doubles.
class ValidRows {
 public:
  explicit ValidRows(const VectorField& field) : field_(field), nothing_(Width(), 0.0) {
    for (auto& row : rows_) row.resize(Width());
  }

  void Fill(std::int32_t j) {
    const std::int32_t* const status = field_.status.Row(j);
    double* const row = rows_[static_cast<std::size_t>(j % 3)].data();
    for (std::size_t i = 0; i < Width(); ++i) row[i] = status[i] > 0 ? 1.0 : 0.0;
  }

  // Row j, filled before; nothing is valid outside the grid.
  const double* Row(std::int32_t j) const {
    return j < 1 || j > field_.rowCount ? nothing_.data() : rows_[static_cast<std::size_t>(j % 3)].data();
  }

 private:
  std::size_t Width() const { return static_cast<std::size_t>(field_.columnCount); }

  const VectorField& field_;
  std::vector<double> nothing_;
  std::array<std::vector<double>, 3> rows_;
};

RowInput InputOfRow(const VectorField& f, const ValidRows& valid, std::int32_t j) {
  const std::int32_t down = j > 1 ? j - 1 : j;
  const std::int32_t up = j < f.rowCount ? j + 1 : j;
  const auto y = [&f](std::int32_t row) { return f.posY[static_cast<std::size_t>(row - 1)]; };
  RowInput in;
  in.columns = f.columnCount;
  in.x = f.posX.data();
  in.y = y(j), in.yDown = y(down), in.yUp = y(up);
  in.u = f.velX.Row(j), in.uDown = f.velX.Row(down), in.uUp = f.velX.Row(up);
  in.v = f.velY.Row(j), in.vDown = f.velY.Row(down), in.vUp = f.velY.Row(up);
  in.valid = valid.Row(j), in.validDown = valid.Row(j - 1), in.validUp = valid.Row(j + 1);
  return in;
}

// Row by row along the memory, across output points. Not inlined: its floating-point flags are read after it.
template <class Inner, class Formula>
QUIVERION_NO_INLINE void ComputeFast(const VectorField& field, Grid<double>& target, Inner inner,
                                     Formula formula) {
  ValidRows valid(field);
  valid.Fill(1);
  for (std::int32_t j = 1; j <= field.rowCount; ++j) {
    if (j < field.rowCount) valid.Fill(j + 1);
    inner(InputOfRow(field, valid, j), target.Row(j));
    target(1, j) = plain::DerivedValue<double>(field, 1, j, formula);
    target(field.columnCount, j) = plain::DerivedValue<double>(field, field.columnCount, j, formula);
  }
}

// The fast kernel works on scratch memory. Only where a floating-point flag was raised the plain loops run in
// place: they stop at the exact point, if there is one.
template <class Inner, class Formula, class CheckedFormula>
void Calculate(VectorField& field, Inner inner, Formula formula, CheckedFormula checkedFormula) {
  Grid<double> scratch;
  scratch.ResetUninitialised(field.columnCount, field.rowCount);
  const FloatErrorScope errors;
  ComputeFast(field, scratch, inner, formula);
  if (errors.Raised()) {
    plain::ComputeDerived<CheckedReal>(field, field.derivedScalar, checkedFormula);
  } else {
    std::swap(field.derivedScalar, scratch);
  }
}

}  // namespace

void CalcVorticity(VectorField& field) {
  Calculate(field, InnerVorticity, plain::Vorticity<double>, plain::Vorticity<CheckedReal>);
}

void CalcSwirlingStrength(VectorField& field) {
  Calculate(field, InnerSwirl, plain::SwirlingStrength<double>, plain::SwirlingStrength<CheckedReal>);
}

}  // namespace quiverion
