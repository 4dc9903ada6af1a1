#include "operations/kernels/derived_scalar.h"

#include <cstdint>
#include <utility>

#include "operations/kernels/derived_scalar_plain.h"
#include "operations/kernels/neighbour_rows.h"
#include "platform/numeric/bit_select.h"
#include "platform/numeric/checked_real.h"
#include "platform/numeric/float_errors.h"
#include "platform/numeric/multi_target.h"

namespace quiverion {
namespace {

// The points between the first and the last column. The same operations on the same operands as the plain loops, so the
// same bits; a point without a value computes 0 / 1, which gives +0.0. No lane divides by zero where the plain loops
// would not.
template <class Formula>
QUIVERION_ALWAYS_INLINE void InnerPoints(const RowInput& row, double* __restrict target, Formula formula) {
  ForInnerPoints(row, [&](std::int32_t i, Mask hasValue, const Differences& d) QUIVERION_LAMBDA_INLINE {
    const double safeDx = Select(hasValue, d.dx, 1.0);
    const double safeDy = Select(hasValue, d.dy, 1.0);
    const double dudx = Select(hasValue, d.dxu, 0.0) * 1000.0 / safeDx;
    const double dudy = Select(hasValue, d.dyu, 0.0) * 1000.0 / safeDy;
    const double dvdx = Select(hasValue, d.dxv, 0.0) * 1000.0 / safeDx;
    const double dvdy = Select(hasValue, d.dyv, 0.0) * 1000.0 / safeDy;
    target[i] = formula(dudx, dudy, dvdx, dvdy);
  });
}

struct VorticityFormula {
  QUIVERION_ALWAYS_INLINE double operator()(double /*dudx*/, double dudy, double dvdx, double /*dvdy*/) const {
    return dvdx - dudy;
  }
};

struct DivergenceFormula {
  QUIVERION_ALWAYS_INLINE double operator()(double dudx, double /*dudy*/, double /*dvdx*/, double dvdy) const {
    return dudx + dvdy;
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

QUIVERION_MULTI_TARGET_CALL(InnerVorticity, (const RowInput& in, double* target), (in, target),
                            InnerPoints(in, target, VorticityFormula{}))
QUIVERION_MULTI_TARGET_CALL(InnerDivergence, (const RowInput& in, double* target), (in, target),
                            InnerPoints(in, target, DivergenceFormula{}))
QUIVERION_MULTI_TARGET_CALL(InnerSwirl, (const RowInput& in, double* target), (in, target),
                            InnerPoints(in, target, SwirlFormula{}))

template <class Inner, class Formula>
void ComputeFast(const VectorField& field, Grid<double>& target, Inner inner, Formula formula) {
  ForEachRowInput({field.posX, field.posY, field.velX, field.velY, field.status},
                  [&](std::int32_t j, const RowInput& row) {
                    inner(row, target.Row(j));
                    target(1, j) = plain::DerivedValue<double>(field, 1, j, formula);
                    target(field.columnCount, j) = plain::DerivedValue<double>(field, field.columnCount, j, formula);
                  });
}

// The fast kernel works on scratch memory. Only if a floating-point flag was raised do the plain loops run in place;
// they stop at the exact point of an error, if there is one. Dividing 0 or NaN by the distance between equal positions
// raises no watched flag, but must also stop the computation.
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

void CalcDivergence(VectorField& field) {
  Calculate(field, InnerDivergence, plain::Divergence<double>, plain::Divergence<CheckedReal>);
}

void CalcSwirlingStrength(VectorField& field) {
  Calculate(field, InnerSwirl, plain::SwirlingStrength<double>, plain::SwirlingStrength<CheckedReal>);
}

}  // namespace quiverion
