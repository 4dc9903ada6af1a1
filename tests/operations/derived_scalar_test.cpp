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

// u = y², v = x² (mm): the vorticity in 1/s is 1000 (difference of x² - difference of y²).
struct NeighbourCase {
  const char* name;
  std::int32_t i, j;
  std::vector<std::pair<std::int32_t, std::int32_t>> invalid;
  double vorticity;
};

TEST(DerivedScalar, UsesTheNeighboursThatAreThere) {
  const NeighbourCase cases[] = {
      {"all four", 3, 3, {}, 1000.0 * (6 - 6)},
      {"first column and row: forward", 1, 1, {}, 1000.0 * (3 - 3)},
      {"first column: forward in x only", 1, 3, {}, 1000.0 * (3 - 6)},
      {"last row: backward in y only", 3, 5, {}, 1000.0 * (6 - 9)},
      {"left invalid", 3, 3, {{2, 3}}, 1000.0 * (7 - 6)},
      {"below invalid", 3, 3, {{3, 2}}, 1000.0 * (6 - 7)},
      {"left and below invalid", 3, 3, {{2, 3}, {3, 2}}, 0.0},
      {"left and right invalid", 3, 3, {{2, 3}, {4, 3}}, 0.0},
      {"diagonal neighbours do not count", 3, 4, {{2, 3}, {4, 3}, {2, 5}, {4, 5}}, 1000.0 * (6 - 8)},
      {"first column with invalid right", 1, 3, {{2, 3}}, 0.0},
      {"itself invalid, four neighbours", 3, 4, {{3, 4}}, 1000.0 * (6 - 8)},
      {"itself and left invalid", 3, 4, {{3, 4}, {2, 4}}, 0.0},
      {"itself and below invalid", 3, 4, {{3, 4}, {3, 3}}, 0.0},
      {"invalid in the first column", 1, 3, {{1, 3}}, 0.0},
      {"invalid in the last row", 3, 5, {{3, 5}}, 0.0}};
  for (const NeighbourCase& c : cases) {
    for (const std::int32_t invalidStatus : {0, -1}) {
      VectorField field = MakeField(5, 5);
      SetVelocities(
          field, [](double, double y) { return y * y; }, [](double x, double) { return x * x; });
      for (const auto& [i, j] : c.invalid) {
        field.status(i, j) = invalidStatus;
        field.velX(i, j) = field.velY(i, j) = 1e6;  // must not be used
      }
      EXPECT_EQ(VorticityOf(field)(c.i, c.j), c.vorticity) << c.name << ", status " << invalidStatus;
    }
  }
}

struct Stop {
  const char* name;
  void (*prepare)(VectorField&);
  ErrorNumber error;
  std::int32_t i, j;  // the point of the stop
};

// Rigid rotation of 100/s on 3 x 3, old values 7: the points before the stop get 200, counted by columns.
TEST(DerivedScalar, StopsAtTheExactPointOfAnArithmeticError) {
  const Stop stops[] = {
      {"equal columns", [](VectorField& f) { f.posX[1] = f.posX[2]; }, ErrorNumber::divisionByZero, 3, 1},
      {"equal rows", [](VectorField& f) { f.posY[0] = f.posY[1]; }, ErrorNumber::divisionByZero, 1, 1},
      {"equal rows at the end", [](VectorField& f) { f.posY[1] = f.posY[2]; }, ErrorNumber::divisionByZero, 1, 3},
      {"velocities too far apart", [](VectorField& f) { f.velX(3, 1) = -1e308; }, ErrorNumber::overflow, 3, 1},
      {"a velocity times 1000", [](VectorField& f) { f.velY(3, 2) = 1e306; }, ErrorNumber::overflow, 2, 2},
      {"the first point", [](VectorField& f) { f.velX(1, 2) = 1.7e308; }, ErrorNumber::overflow, 1, 1}};
  for (const Stop& stop : stops) {
    VectorField field = MakeField(3, 3);
    for (double& old : field.derivedScalar.Values()) old = 7;
    SetVelocities(
        field, [](double, double y) { return -0.125 * y; }, [](double x, double) { return 0.125 * x; });
    stop.prepare(field);
    try {
      CalcVorticity(field);
      ADD_FAILURE() << stop.name << ": no error";
    } catch (const SystemError& error) {
      EXPECT_EQ(error.Number(), stop.error) << stop.name;
    }
    for (std::int32_t i = 1; i <= 3; ++i) {
      for (std::int32_t j = 1; j <= 3; ++j) {
        const bool before = i < stop.i || (i == stop.i && j < stop.j);
        EXPECT_EQ(field.derivedScalar(i, j) == 7, !before) << stop.name << " at (" << i << "," << j << ")";
      }
    }
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
