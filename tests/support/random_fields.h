#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "support/field_builder.h"

/// Random fields for the tests that compare a fast kernel with the plain loops.
namespace quiverion::test {

inline constexpr double kInfinity = std::numeric_limits<double>::infinity();
inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// The contents of a random field besides ordinary vectors; the shares are per mille of the points.
struct Mix {
  unsigned invalid = 0;
  unsigned special = 0;  // zero, -0.0, equal to the previous vector, tiny
  unsigned notFinite = 0;
  unsigned huge = 0;  // differences and squares overflow
  bool equalPositions = false;
  unsigned quantised = 0;  // -2, -1 ... 2: many equal magnitudes of different vectors
};

inline bool Share(std::mt19937_64& random, unsigned perMille) {
  return random() % 1000 < perMille;
}

inline void FillPositions(std::mt19937_64& random, std::vector<double, UninitialisedAllocator<double>>& positions) {
  const double direction = random() % 2 == 0 ? 1.0 : -1.0;
  double position = Uniform(random, -50, 50);
  for (double& p : positions) p = position += direction * Uniform(random, 0.05, 2.0);
}

inline double RandomVelocity(std::mt19937_64& random, const Mix& mix, double before) {
  if (Share(random, mix.huge)) return random() % 2 == 0 ? 1.7e308 : -1.2e155;
  if (Share(random, mix.notFinite)) return random() % 3 == 0 ? kNaN : random() % 2 == 0 ? kInfinity : -kInfinity;
  if (Share(random, mix.quantised)) return static_cast<double>(random() % 5) - 2.0;
  if (!Share(random, mix.special)) return Uniform(random, -20, 20);
  const double choices[] = {0.0, -0.0, before, -before, 4e-324};
  return choices[random() % 5];
}

/// Positions 0.05 to 2 mm apart, velocities below 20 m/s except for the mix, every derivedScalar different.
inline VectorField RandomField(std::uint64_t seed, std::int32_t columns, std::int32_t rows, const Mix& mix) {
  std::mt19937_64 random(seed);
  VectorField field = MakeField(columns, rows);
  FillPositions(random, field.posX);
  FillPositions(random, field.posY);
  if (mix.equalPositions) {
    auto& positions = random() % 2 == 0 ? field.posX : field.posY;
    positions[random() % positions.size()] = positions[random() % positions.size()];
  }
  double before = 1.0;
  const auto points = static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows);
  for (std::size_t p = 0; p < points; ++p) {
    field.velX.Values()[p] = before = RandomVelocity(random, mix, before);
    field.velY.Values()[p] = before = RandomVelocity(random, mix, before);
    const std::int32_t bad[] = {0, -1, -7};
    field.status.Values()[p] =
        Share(random, mix.invalid) ? bad[random() % 3] : static_cast<std::int32_t>(1 + random() % 4);
    field.derivedScalar.Values()[p] = 1000.0 + static_cast<double>(p);
  }
  return field;
}

/// NaN is NaN, whatever its bits.
inline bool SameNumber(double a, double b) {
  return (std::isnan(a) && std::isnan(b)) || std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

/// Describes the first difference; empty if there is none.
inline std::string FirstDifference(const Grid<double>& expected, const Grid<double>& actual) {
  const auto [e, a] = std::ranges::mismatch(expected.Values(), actual.Values(), SameNumber);
  if (e == expected.Values().end()) return {};
  return " at point " + std::to_string(e - expected.Values().begin()) + ": expected " + std::to_string(*e) + ", is " +
         std::to_string(*a);
}

/// Calls `check(columns, rows)` for all small grids and some that are longer than a vector register.
template <class Check>
void ForEverySize(Check check) {
  for (std::int32_t columns = 1; columns <= 9; ++columns) {
    for (std::int32_t rows = 1; rows <= 9; ++rows) check(columns, rows);
  }
  const std::int32_t others[][2] = {{1, 40}, {40, 1}, {2, 31}, {31, 2}, {17, 5}, {33, 9}, {64, 3}, {65, 4}};
  for (const auto& [columns, rows] : others) check(columns, rows);
}

/// Mixes without an arithmetic error: NaN and infinity propagate.
inline constexpr Mix kCarriedMixes[] = {{},
                                        {.invalid = 150},
                                        {.invalid = 500, .special = 300},
                                        {.special = 1000},
                                        {.invalid = 850, .special = 100},
                                        {.invalid = 1000},
                                        {.invalid = 100, .special = 100, .notFinite = 30},
                                        {.notFinite = 400}};

}  // namespace quiverion::test
