#include "operations/derived_scalar.h"

#include <array>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "operations/derived_scalar_plain.h"
#include "platform/bit_select.h"
#include "platform/checked_real.h"
#include "platform/float_errors.h"
#include "platform/multi_target.h"

namespace quiverion {
namespace {

// One row of points with the rows below and above. `valid` is a mask per vector, as wide as the doubles it
// selects. A row outside the grid is the row itself with nothing valid in it.
struct RowInput {
  std::int32_t columns;
  const double* x;
  double y, yDown, yUp;
  const double *u, *uDown, *uUp;
  const double *v, *vDown, *vUp;
  const Mask *valid, *validDown, *validUp;
};

// The points between the first and the last column. The same operations on the same operands as the plain
// loops, so the same bits; a point without a value runs on 0 / 1 and gives +0.0. Operands are selected before
// anything is divided, so no lane divides by zero that the plain loops would not divide.
template <class Formula>
QUIVERION_ALWAYS_INLINE void InnerPoints(const RowInput& row, double* __restrict target, Formula formula) {
  const RowInput in = row;  // a copy cannot alias the target
  const std::int32_t last = in.columns - 1;
  for (std::int32_t i = 1; i < last; ++i) {
    const Mask left = in.valid[i - 1], right = in.valid[i + 1], down = in.validDown[i], up = in.validUp[i];
    const Mask hasValue = (in.valid[i] & (left | right) & (down | up)) | (left & right & down & up);
    const double x = in.x[i], u = in.u[i], v = in.v[i];
    const double dx = Select(right, in.x[i + 1], x) - Select(left, in.x[i - 1], x);
    const double dy = Select(up, in.yUp, in.y) - Select(down, in.yDown, in.y);
    const double dxu = Select(right, in.u[i + 1], u) - Select(left, in.u[i - 1], u);
    const double dyu = Select(up, in.uUp[i], u) - Select(down, in.uDown[i], u);
    const double dxv = Select(right, in.v[i + 1], v) - Select(left, in.v[i - 1], v);
    const double dyv = Select(up, in.vUp[i], v) - Select(down, in.vDown[i], v);
    const double safeDx = Select(hasValue, dx, 1.0);
    const double safeDy = Select(hasValue, dy, 1.0);
    const double dudx = Select(hasValue, dxu, 0.0) * 1000.0 / safeDx;
    const double dudy = Select(hasValue, dyu, 0.0) * 1000.0 / safeDy;
    const double dvdx = Select(hasValue, dxv, 0.0) * 1000.0 / safeDx;
    const double dvdy = Select(hasValue, dyv, 0.0) * 1000.0 / safeDy;
    target[i] = formula(dudx, dudy, dvdx, dvdy);
  }
}

struct VorticityFormula {
  QUIVERION_ALWAYS_INLINE double operator()(double /*dudx*/, double dudy, double dvdx, double /*dvdy*/) const {
    return dvdx - dudy;
  }
};

struct SwirlFormula {
  QUIVERION_ALWAYS_INLINE double operator()(double dudx, double dudy, double dvdx, double dvdy) const {
    const double halfTrace = (dudx + dvdy) / 2.0;
    const double q = halfTrace * halfTrace - (dudx * dvdy - dudy * dvdx);
    const double s = q >= 0.0 ? 0.0 : -q;
    // Adding +0.0 turns -0.0 into +0.0 and changes nothing else.
    return (dudy < dvdx ? s : -s) + 0.0;
  }
};

QUIVERION_MULTI_TARGET void InnerVorticity(const RowInput& in, double* target) {
  InnerPoints(in, target, VorticityFormula{});
}

QUIVERION_MULTI_TARGET void InnerSwirl(const RowInput& in, double* target) {
  InnerPoints(in, target, SwirlFormula{});
}

// Which vectors of the last rows are valid.
class ValidRows {
 public:
  explicit ValidRows(const VectorField& field) : field_(field), nothing_(Width(), 0) {
    for (auto& row : rows_) row.resize(Width());
  }

  void Fill(std::int32_t j) {
    const std::int32_t* const status = field_.status.Row(j);
    Mask* const row = rows_[static_cast<std::size_t>(j % 3)].data();
    for (std::size_t i = 0; i < Width(); ++i) row[i] = MaskOf(status[i] > 0);
  }

  // Row j, filled before; nothing is valid outside the grid.
  const Mask* Row(std::int32_t j) const {
    return j < 1 || j > field_.rowCount ? nothing_.data() : rows_[static_cast<std::size_t>(j % 3)].data();
  }

 private:
  std::size_t Width() const { return static_cast<std::size_t>(field_.columnCount); }

  const VectorField& field_;
  std::vector<Mask> nothing_;
  std::array<std::vector<Mask>, 3> rows_;
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

// Row by row along the memory, across output points.
template <class Inner, class Formula>
void ComputeFast(const VectorField& field, Grid<double>& target, Inner inner, Formula formula) {
  ValidRows valid(field);
  valid.Fill(1);
  for (std::int32_t j = 1; j <= field.rowCount; ++j) {
    if (j < field.rowCount) valid.Fill(j + 1);
    inner(InputOfRow(field, valid, j), target.Row(j));
    target(1, j) = plain::DerivedValue<double>(field, 1, j, formula);
    target(field.columnCount, j) = plain::DerivedValue<double>(field, field.columnCount, j, formula);
  }
}

// Two positions that some point could take its difference between are equal. Dividing 0 or NaN by their distance raises
// no flag that is watched, but stops the computation all the same.
bool HasEqualPositions(std::span<const double> positions) {
  bool equal = false;
  for (std::size_t k = 1; k < positions.size(); ++k) equal |= positions[k] == positions[k - 1];
  for (std::size_t k = 2; k < positions.size(); ++k) equal |= positions[k] == positions[k - 2];
  return equal;
}

// The fast kernel works on scratch memory. Only where a floating-point flag was raised the plain loops run in place:
// they stop at the exact point, if there is one.
template <class Inner, class Formula, class CheckedFormula>
void Calculate(VectorField& field, Inner inner, Formula formula, CheckedFormula checkedFormula) {
  Grid<double> scratch;
  scratch.ResetUninitialised(field.columnCount, field.rowCount);
  if (RaisesFloatError([&] { ComputeFast(field, scratch, inner, formula); }) || HasEqualPositions(field.posX) ||
      HasEqualPositions(field.posY)) {
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
