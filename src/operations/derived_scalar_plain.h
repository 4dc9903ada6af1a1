#pragma once

#include "field/vector_field.h"
#include "platform/checked_real.h"

/// The definition of the derived scalars: plain loops in visiting order. `Real` is double, or CheckedReal
/// where the computation must stop at an arithmetic error with the points before it done.
namespace quiverion::plain {

/// The difference quotients at one point, each computed when a formula asks for it: what a quantity does not use cannot
/// stop it. Neighbours are columns im, ip and rows jm, jp.
template <class Real>
class VelocityGradient {
 public:
  VelocityGradient(const VectorField& field, std::int32_t i, std::int32_t j, std::int32_t im, std::int32_t ip,
                   std::int32_t jm, std::int32_t jp)
      : field_(field), i_(i), j_(j), im_(im), ip_(ip), jm_(jm), jp_(jp) {}

  Real DuDx() const { return AlongX(field_.velX); }  // 1/s
  Real DuDy() const { return AlongY(field_.velX); }
  Real DvDx() const { return AlongX(field_.velY); }
  Real DvDy() const { return AlongY(field_.velY); }

 private:
  Real AlongX(const Grid<double>& velocity) const {
    const auto x = [this](std::int32_t column) { return Real(field_.posX[static_cast<std::size_t>(column - 1)]); };
    return (Real(velocity(ip_, j_)) - Real(velocity(im_, j_))) * 1000.0 / (x(ip_) - x(im_));
  }
  Real AlongY(const Grid<double>& velocity) const {
    const auto y = [this](std::int32_t row) { return Real(field_.posY[static_cast<std::size_t>(row - 1)]); };
    return (Real(velocity(i_, jp_)) - Real(velocity(i_, jm_))) * 1000.0 / (y(jp_) - y(jm_));
  }

  const VectorField& field_;
  std::int32_t i_, j_, im_, ip_, jm_, jp_;
};

template <class Real>
Real Vorticity(const VelocityGradient<Real>& g) {
  return g.DvDx() - g.DuDy();
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

/// The value of `formula` at point (i, j), 0 where the point has too few usable neighbours.
template <class Real, class Formula>
Real DerivedValue(const VectorField& f, std::int32_t i, std::int32_t j, Formula formula) {
  const auto valid = [&f](std::int32_t column, std::int32_t row) { return f.status(column, row) > 0; };
  const std::int32_t im = i > 1 && valid(i - 1, j) ? i - 1 : i;
  const std::int32_t ip = i < f.columnCount && valid(i + 1, j) ? i + 1 : i;
  const std::int32_t jm = j > 1 && valid(i, j - 1) ? j - 1 : j;
  const std::int32_t jp = j < f.rowCount && valid(i, j + 1) ? j + 1 : j;
  const bool usable = valid(i, j) || (im != i && ip != i && jm != j && jp != j);
  if (im == ip || jm == jp || !usable) return 0.0;
  return formula(VelocityGradient<Real>(f, i, j, im, ip, jm, jp));
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
