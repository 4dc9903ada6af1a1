// The fast kernel against the plain loops: the same bits, the same stop.
#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <string>

#include "operations/derived_scalar.h"
#include "operations/derived_scalar_plain.h"
#include "platform/checked_real.h"
#include "support/error_of.h"
#include "support/random_fields.h"

namespace quiverion::test {
namespace {

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
