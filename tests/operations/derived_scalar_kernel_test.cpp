// The fast kernel against the plain loops: the same bits, the same stop.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include "operations/derived_scalar.h"
#include "operations/derived_scalar_plain.h"
#include "platform/checked_real.h"
#include "support/error_of.h"
#include "support/field_builder.h"

namespace quiverion::test {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct Quantity {
  const char* name;
  void (*calculate)(VectorField&);
  void (*plain)(const VectorField&, Grid<double>&);
  void (*checked)(const VectorField&, Grid<double>&);
};

constexpr Quantity kQuantities[] = {
    {"vorticity", CalcVorticity,
     [](const VectorField& f, Grid<double>& t) { plain::ComputeDerived<double>(f, t, plain::Vorticity<double>); },
     [](const VectorField& f, Grid<double>& t) {
       plain::ComputeDerived<CheckedReal>(f, t, plain::Vorticity<CheckedReal>);
     }},
    {"swirling strength", CalcSwirlingStrength,
     [](const VectorField& f, Grid<double>& t) {
       plain::ComputeDerived<double>(f, t, plain::SwirlingStrength<double>);
     },
     [](const VectorField& f, Grid<double>& t) {
       plain::ComputeDerived<CheckedReal>(f, t, plain::SwirlingStrength<CheckedReal>);
     }},
};

// What a random field holds besides ordinary vectors; the shares are per mille of the points.
struct Mix {
  unsigned invalid = 0;
  unsigned special = 0;  // zero, -0.0, equal to the vector before, tiny
  unsigned notFinite = 0;
  unsigned huge = 0;  // differences and squares overflow
  bool equalPositions = false;
};

bool Share(std::mt19937_64& random, unsigned perMille) {
  return random() % 1000 < perMille;
}

void FillPositions(std::mt19937_64& random, std::vector<double, UninitialisedAllocator<double>>& positions) {
  const double direction = random() % 2 == 0 ? 1.0 : -1.0;
  double position = Uniform(random, -50, 50);
  for (double& p : positions) p = position += direction * Uniform(random, 0.05, 2.0);
}

double RandomVelocity(std::mt19937_64& random, const Mix& mix, double before) {
  if (Share(random, mix.huge)) return random() % 2 == 0 ? 1.7e308 : -1.2e155;
  if (Share(random, mix.notFinite)) return random() % 3 == 0 ? kNaN : random() % 2 == 0 ? kInfinity : -kInfinity;
  if (!Share(random, mix.special)) return Uniform(random, -20, 20);
  const double choices[] = {0.0, -0.0, before, -before, 4e-324};
  return choices[random() % 5];
}

VectorField RandomField(std::uint64_t seed, std::int32_t columns, std::int32_t rows, const Mix& mix) {
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

bool SameBits(double a, double b) {
  return (std::isnan(a) && std::isnan(b)) || std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

// The first difference in words; empty where there is none.
std::string FirstDifference(const Grid<double>& expected, const Grid<double>& actual) {
  for (std::int32_t i = 1; i <= expected.Columns(); ++i) {
    for (std::int32_t j = 1; j <= expected.Rows(); ++j) {
      if (SameBits(expected(i, j), actual(i, j))) continue;
      return "(" + std::to_string(i) + "," + std::to_string(j) + "): expected " + std::to_string(expected(i, j)) +
             ", is " + std::to_string(actual(i, j));
    }
  }
  return {};
}

template <class Check>
void ForEverySize(Check check) {
  for (std::int32_t columns = 1; columns <= 9; ++columns) {
    for (std::int32_t rows = 1; rows <= 9; ++rows) check(columns, rows);
  }
  const std::int32_t others[][2] = {{1, 40}, {40, 1}, {2, 31}, {31, 2}, {17, 5}, {33, 9}, {64, 3}, {65, 4}};
  for (const auto& [columns, rows] : others) check(columns, rows);
}

constexpr Mix kCarriedMixes[] = {{},
                                 {.invalid = 150},
                                 {.invalid = 500, .special = 300},
                                 {.special = 1000},
                                 {.invalid = 850, .special = 100},
                                 {.invalid = 1000},
                                 {.invalid = 100, .special = 100, .notFinite = 30},
                                 {.notFinite = 400}};

TEST(DerivedScalarKernel, GivesTheBitsOfThePlainLoopsOnEverySize) {
  for (const Quantity& quantity : kQuantities) {
    std::uint64_t seed = 1;
    ForEverySize([&](std::int32_t columns, std::int32_t rows) {
      for (const Mix& mix : kCarriedMixes) {
        VectorField field = RandomField(++seed, columns, rows, mix);
        Grid<double> expected(columns, rows);
        quantity.plain(field, expected);
        quantity.calculate(field);
        ASSERT_EQ(FirstDifference(expected, field.derivedScalar), "")
            << quantity.name << " " << columns << "x" << rows << " seed " << seed;
      }
    });
  }
}

TEST(DerivedScalarKernel, StopsWhereThePlainLoopsStop) {
  const Mix mixes[] = {{.invalid = 100, .huge = 20},
                       {.invalid = 100, .special = 50, .notFinite = 50, .huge = 50},
                       {.invalid = 200, .special = 200, .equalPositions = true},
                       {.invalid = 100, .special = 500, .notFinite = 200, .equalPositions = true},
                       {.invalid = 300, .notFinite = 800, .equalPositions = true}};
  for (const Quantity& quantity : kQuantities) {
    std::uint64_t seed = 50000;
    int stops = 0;
    ForEverySize([&](std::int32_t columns, std::int32_t rows) {
      for (const Mix& mix : mixes) {
        VectorField field = RandomField(++seed, columns, rows, mix);
        Grid<double> expected = field.derivedScalar;
        const auto expectedError = ErrorOf([&] { quantity.checked(field, expected); });
        const auto error = ErrorOf([&] { quantity.calculate(field); });
        stops += error != 0 ? 1 : 0;
        EXPECT_EQ(expectedError, error) << quantity.name << " " << columns << "x" << rows << " seed " << seed;
        EXPECT_EQ(FirstDifference(expected, field.derivedScalar), "")
            << quantity.name << " " << columns << "x" << rows << " seed " << seed;
        if (testing::Test::HasFailure()) return;
      }
    });
    EXPECT_GT(stops, 100) << "the mixes must contain errors";
  }
}

// Any compiler option that changes values changes these sums. They were computed by another program.
TEST(DerivedScalarKernel, KeepsTheBitsOfAKnownField) {
  std::mt19937_64 random(20240607);
  VectorField field = MakeField(125, 100);
  for (double& x : field.posX) x = x * 0.37 - 20.0;
  for (double& y : field.posY) y = 18.0 - y * 0.41;
  for (std::size_t p = 0; p < 12500; ++p) {
    field.velX.Values()[p] = Uniform(random, -20, 20);
    field.velY.Values()[p] = Uniform(random, -20, 20);
    field.status.Values()[p] = static_cast<std::int32_t>(random() % 10) - 1;
  }
  const auto checksum = [&] {
    std::uint64_t hash = 0xcbf29ce484222325;
    for (const double value : field.derivedScalar.Values()) {
      auto bits = std::bit_cast<std::uint64_t>(value);
      for (int k = 0; k < 8; ++k, bits >>= 8) hash = (hash ^ (bits & 0xFF)) * 0x100000001b3;
    }
    return hash;
  };
  CalcVorticity(field);
  EXPECT_EQ(checksum(), 0xe03c8a67e9341937u);
  CalcSwirlingStrength(field);
  EXPECT_EQ(checksum(), 0x3c52e963fd2ab09du);
}

}  // namespace
}  // namespace quiverion::test
