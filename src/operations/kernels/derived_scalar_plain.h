#pragma once

#include "field/vector_field.h"
#include "operations/kernels/neighbours_plain.h"
#include "platform/numeric/checked_real.h"

/// The definition of the derived scalars: plain loops in visiting order. `Real` is double, or CheckedReal if the
/// computation must stop at an arithmetic error with the points before it done.
namespace quiverion::plain {

/// The difference quotients at one point, each computed only when a formula needs it, so that an unused quotient cannot
/// stop the computation.
template <class Real>
class VelocityGradient {
 public:
  VelocityGradient(const VectorField& field, std::int32_t i, std::int32_t j, const Neighbours& neighbours)
      : field_(field), i_(i), j_(j), at_(neighbours) {}

  Real DuDx() const { return AlongX(field_.velX); }  // 1/s
  Real DuDy() const { return AlongY(field_.velX); }
  Real DvDx() const { return AlongX(field_.velY); }
  Real DvDy() const { return AlongY(field_.velY); }

 private:
  Real AlongX(const Grid<double>& velocity) const {
    const auto x = [this](std::int32_t column) { return Real(field_.posX[static_cast<std::size_t>(column - 1)]); };
    return (Real(velocity(at_.ip, j_)) - Real(velocity(at_.im, j_))) * 1000.0 / (x(at_.ip) - x(at_.im));
  }
  Real AlongY(const Grid<double>& velocity) const {
    const auto y = [this](std::int32_t row) { return Real(field_.posY[static_cast<std::size_t>(row - 1)]); };
    return (Real(velocity(i_, at_.jp)) - Real(velocity(i_, at_.jm))) * 1000.0 / (y(at_.jp) - y(at_.jm));
  }

  const VectorField& field_;
  std::int32_t i_, j_;
  Neighbours at_;
};

template <class Real>
Real Vorticity(const VelocityGradient<Real>& g) {
  return g.DvDx() - g.DuDy();
}

template <class Real>
Real Divergence(const VelocityGradient<Real>& g) {
  return g.DuDx() + g.DvDy();
}

template <class Real>
Real SwirlingStrength(const VelocityGradient<Real>& g) {
  const Real dudx = g.DuDx(), dudy = g.DuDy(), dvdx = g.DvDx(), dvdy = g.DvDy();
  const Real halfTrace = (dudx + dvdy) / 2.0;
  const Real q = halfTrace * halfTrace - (dudx * dvdy - dudy * dvdx);
  const Real s = -q;
  if (s < 0.0 || s == 0.0) return 0.0;
  return dudy < dvdx ? s : -s;
}

/// The value of `formula` at point (i, j), 0 if the point has too few usable neighbours.
template <class Real, class Formula>
Real DerivedValue(const VectorField& f, std::int32_t i, std::int32_t j, Formula formula) {
  const Neighbours neighbours = NeighboursOf(f.status, i, j);
  if (!neighbours.haveValue) return 0.0;
  return formula(VelocityGradient<Real>(f, i, j, neighbours));
}

/// Visits the grid column by column and writes into `target`.
template <class Real, class Formula>
void ComputeDerived(const VectorField& field, Grid<double>& target, Formula formula) {
  for (std::int32_t i = 1; i <= field.columnCount; ++i) {
    for (std::int32_t j = 1; j <= field.rowCount; ++j) {
      target(i, j) = ToDouble(DerivedValue<Real>(field, i, j, formula));
    }
  }
}

}  // namespace quiverion::plain
