// Vorticity and swirling strength against closed forms and against values computed by hand.
#include "operations/kernels/derived_scalar.h"

#include <gtest/gtest.h>

#include <cmath>

#include "operations/kernels/derived_scalar_plain.h"
#include "support/kernel_compare.h"

namespace quiverion::test {
namespace {

// A field whose positions are neither equally spaced nor ascending in y.
VectorField UnevenField(std::int32_t columns, std::int32_t rows) {
  VectorField field = MakeField(columns, rows);
  for (double& x : field.posX) x = x * x * 0.25 - 3.0;
  for (double& y : field.posY) y = 10.0 - y * 1.5;
  return field;
}

Grid<double> VorticityOf(VectorField field) {
  CalcVorticity(field);
  return field.derivedScalar;
}

Grid<double> SwirlOf(VectorField field) {
  CalcSwirlingStrength(field);
  return field.derivedScalar;
}

void ExpectEverywhere(const Grid<double>& grid, double expected) {
  for (const double value : grid.Values()) EXPECT_NEAR(value, expected, 1e-9 * (1.0 + std::fabs(expected)));
}

struct Flow {
  const char* name;
  double ux, uy, vx, vy;  // velocity gradients in 1/s
  double vorticity, swirl;
};

TEST(DerivedScalar, OfALinearFlowIsThatOfItsGradient) {
  constexpr Flow flows[] = {{"rotation to the left", 0, -250, 250, 0, 500, 62500},
                            {"rotation to the right", 0, 250, -250, 0, -500, -62500},
                            {"shear along x", 0, 120, 0, 0, -120, 0},
                            {"shear along y", 0, 0, -80, 0, -80, 0},
                            {"strain", 50, 0, 0, -50, 0, 0},
                            {"more strain than rotation", 40, 10, -20, -40, -30, 0},
                            {"flattened rotation", 0, -25, 4, 0, 29, 100},
                            {"eigenvalues 20 +- i sqrt(5300)", 30, -90, 60, 10, 150, 5300}};
  for (const Flow& flow : flows) {
    VectorField field = UnevenField(5, 4);
    SetVelocities(
        field, [&](double x, double y) { return (flow.ux * x + flow.uy * y) * 0.001 + 4; },
        [&](double x, double y) { return (flow.vx * x + flow.vy * y) * 0.001 - 2; });
    SCOPED_TRACE(flow.name);
    ExpectEverywhere(VorticityOf(field), flow.vorticity);
    ExpectEverywhere(SwirlOf(field), flow.swirl);
  }
}

TEST(DerivedScalar, KernelsGiveTheBitsAndTheStopOfThePlainLoops) {
  const auto vorticity = [](VectorField& f) {
    plain::ComputeDerived<CheckedReal>(f, f.derivedScalar, plain::Vorticity<CheckedReal>);
  };
  const auto swirl = [](VectorField& f) {
    plain::ComputeDerived<CheckedReal>(f, f.derivedScalar, plain::SwirlingStrength<CheckedReal>);
  };
  EXPECT_GT(ExpectSameAsPlain(CalcVorticity, vorticity), 100) << "the mixes must contain errors";
  EXPECT_GT(ExpectSameAsPlain(CalcSwirlingStrength, swirl), 100);
}

}  // namespace
}  // namespace quiverion::test
