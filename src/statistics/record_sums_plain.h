#pragma once

#include "operations/kernels/neighbours_plain.h"
#include "statistics/statistic_state.h"

/// What each pass of a statistic does with a record: the definition, as plain loops in visiting order. A vector that is
/// invalid in the record does not contribute to its sums at all.
namespace quiverion::plain {

/// Calls add(i, j) for every vector that is valid in the record.
template <class Add>
void ForEachValid(const StatisticState& state, Add add) {
  std::size_t k = 0;
  for (std::int32_t j = 1; j <= state.field.rowCount; ++j) {
    for (std::int32_t i = 1; i <= state.field.columnCount; ++i) {
      if (IsValid(state.validBits, k++)) add(i, j);
    }
  }
}

inline void AddVelocities(StatisticState& s) {
  ForEachValid(s, [&s](std::int32_t i, std::int32_t j) {
    s.field.velX(i, j) += s.buffer.bufferVelX(i, j);
    s.field.velY(i, j) += s.buffer.bufferVelY(i, j);
    s.field.status(i, j) += 1;
  });
}

inline void AddSquares(StatisticState& s) {
  ForEachValid(s, [&s](std::int32_t i, std::int32_t j) {
    const double u = s.buffer.bufferVelX(i, j), v = s.buffer.bufferVelY(i, j);
    s.field.velX(i, j) += u * u;
    s.field.velY(i, j) += v * v;
  });
}

inline void AddProducts(StatisticState& s) {
  ForEachValid(s, [&s](std::int32_t i, std::int32_t j) {
    s.field.velY(i, j) += s.buffer.bufferVelX(i, j) * s.buffer.bufferVelY(i, j);
  });
}

/// Adds the squares of the fluctuations to velX and their product to velY.
inline void AddFluctuations(StatisticState& s) {
  ForEachValid(s, [&s](std::int32_t i, std::int32_t j) {
    const double u = s.buffer.bufferVelX(i, j) - s.meanU(i, j);
    const double v = s.buffer.bufferVelY(i, j) - s.meanV(i, j);
    s.field.velX(i, j) += u * u + v * v;
    s.field.velY(i, j) += u * v;
  });
}

/// Turns the velocities of the record's valid vectors into fluctuations, and sets `bufferStatus` to 1 there, else 0.
inline void TurnIntoFluctuations(StatisticState& s) {
  for (std::int32_t& status : s.buffer.bufferStatus.Values()) status = 0;
  ForEachValid(s, [&s](std::int32_t i, std::int32_t j) {
    s.buffer.bufferVelX(i, j) -= s.meanU(i, j);
    s.buffer.bufferVelY(i, j) -= s.meanV(i, j);
    s.buffer.bufferStatus(i, j) = 1;
  });
}

/// Adds the squared derivatives of the fluctuations at (i, j) to velX and 1 to status, if the point has usable
/// neighbours along both axes at different positions.
inline void AddDerivativesAt(StatisticState& s, std::int32_t i, std::int32_t j) {
  const Grid<double>& u = s.buffer.bufferVelX;
  const Grid<double>& v = s.buffer.bufferVelY;
  const auto [im, ip, jm, jp, haveValue] = NeighboursOf(s.buffer.bufferStatus, i, j);
  if (!haveValue) return;
  const auto x = [&s](std::int32_t column) { return s.field.posX[static_cast<std::size_t>(column - 1)]; };
  const auto y = [&s](std::int32_t row) { return s.field.posY[static_cast<std::size_t>(row - 1)]; };
  const double dx = x(ip) - x(im), dy = y(jp) - y(jm);
  if (dx == 0.0 || dy == 0.0) return;
  const double dudx = (u(ip, j) - u(im, j)) / dx * 1000.0;
  const double dudy = (u(i, jp) - u(i, jm)) / dy * 1000.0;
  const double dvdy = (v(i, jp) - v(i, jm)) / dy * 1000.0;
  s.field.velX(i, j) += dudx * dudx + dudy * dudy + dvdy * dudx;
  s.field.status(i, j) += 1;
}

inline void AddDerivatives(StatisticState& s) {
  TurnIntoFluctuations(s);
  for (std::int32_t j = 1; j <= s.field.rowCount; ++j) {
    for (std::int32_t i = 1; i <= s.field.columnCount; ++i) AddDerivativesAt(s, i, j);
  }
}

}  // namespace quiverion::plain
