#pragma once

#include "field/vector_field.h"

/// The definition of the derived scalars: plain loops in visiting order. `Real` is double, or CheckedReal
/// where the computation must stop at an arithmetic error with the points before it done.
namespace quiverion::plain {

template <class Real>
struct VelocityGradient {
  Real dudx, dudy, dvdx, dvdy;  // 1/s
};

template <class Real>
Real Vorticity(const VelocityGradient<Real>& g) {
  return g.dvdx - g.dudy;
}

template <class Real>
Real SwirlingStrength(const VelocityGradient<Real>& g) {
  const Real halfTrace = (g.dudx + g.dvdy) / 2.0;
  const Real q = halfTrace * halfTrace - (g.dudx * g.dvdy - g.dudy * g.dvdx);
  const Real s = -q;
  if (s < 0.0 || s == 0.0) return 0.0;
  return g.dudy < g.dvdx ? s : -s;
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

  const auto x = [&f](std::int32_t column) { return Real(f.posX[static_cast<std::size_t>(column - 1)]); };
  const auto y = [&f](std::int32_t row) { return Real(f.posY[static_cast<std::size_t>(row - 1)]); };
  VelocityGradient<Real> g;
  g.dudx = (Real(f.velX(ip, j)) - Real(f.velX(im, j))) * 1000.0 / (x(ip) - x(im));
  g.dudy = (Real(f.velX(i, jp)) - Real(f.velX(i, jm))) * 1000.0 / (y(jp) - y(jm));
  g.dvdx = (Real(f.velY(ip, j)) - Real(f.velY(im, j))) * 1000.0 / (x(ip) - x(im));
  g.dvdy = (Real(f.velY(i, jp)) - Real(f.velY(i, jm))) * 1000.0 / (y(jp) - y(jm));
  return formula(g);
}

inline double ToDouble(double value) {
  return value;
}
template <class Real>
double ToDouble(const Real& value) {
  return value.Value();
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
