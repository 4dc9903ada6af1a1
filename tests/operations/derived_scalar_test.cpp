// Vorticity and swirling strength against closed forms and against values computed by hand.
#include "operations/derived_scalar.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "platform/system_error.h"
#include "support/field_builder.h"

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

TEST(DerivedScalar, OfARigidRotationIsTwiceTheRateAndItsSignedSquare) {
  for (const double omega : {250.0, -250.0}) {
    VectorField field = UnevenField(6, 5);
    SetVelocities(
        field, [&](double, double y) { return -omega * y / 1000 + 4.0; },
        [&](double x, double) { return omega * x / 1000 - 2.0; });
    ExpectEverywhere(VorticityOf(field), 2 * omega);
    ExpectEverywhere(SwirlOf(field), omega * std::fabs(omega));
  }
}

TEST(DerivedScalar, OfFlowsWithoutSwirlIsZeroSwirlingStrength) {
  struct Flow {
    const char* name;
    double ux, uy, vx, vy;  // velocity gradients in 1/s
    double vorticity;
  };
  constexpr Flow flows[] = {{"shear along x", 0, 120, 0, 0, -120},
                            {"shear along y", 0, 0, -80, 0, -80},
                            {"strain", 50, 0, 0, -50, 0},
                            {"source", 30, 0, 0, 30, 0},
                            {"more strain than rotation", 40, 10, -20, -40, -30}};
  for (const Flow& flow : flows) {
    VectorField field = MakeField(5, 4);
    SetVelocities(
        field, [&](double x, double y) { return (flow.ux * x + flow.uy * y) * 0.001; },
        [&](double x, double y) { return (flow.vx * x + flow.vy * y) * 0.001; });
    SCOPED_TRACE(flow.name);
    ExpectEverywhere(VorticityOf(field), flow.vorticity);
    ExpectEverywhere(SwirlOf(field), 0.0);
  }
}

TEST(DerivedScalar, OfASwirlingFlowWithStrainIsTheSquareOfTheImaginaryPart) {
  VectorField field = UnevenField(4, 4);
  // Gradient (30 -90; 60 10): eigenvalues 20 +- i sqrt(5300).
  SetVelocities(
      field, [](double x, double y) { return 0.030 * x - 0.090 * y; },
      [](double x, double y) { return 0.060 * x + 0.010 * y; });
  ExpectEverywhere(SwirlOf(field), 5300.0);
  ExpectEverywhere(VorticityOf(field), 150.0);
}

TEST(DerivedScalar, FindsTheCoreOfAVortex) {
  constexpr double coreRadius = 5.0, step = 0.5;  // mm
  for (const double coreVorticity : {800.0, -800.0}) {
    VectorField field = MakeField(81, 61);
    for (double& x : field.posX) x = (x - 41) * step;
    for (double& y : field.posY) y = (y - 31) * step;
    // Lamb-Oseen: tangential velocity over radius, in 1/s.
    const auto rate = [&](double x, double y) {
      const double r2 = x * x + y * y, c2 = coreRadius * coreRadius;
      return r2 == 0 ? coreVorticity / 2 : coreVorticity * c2 / (2 * r2) * (1 - std::exp(-r2 / c2));
    };
    SetVelocities(
        field, [&](double x, double y) { return -rate(x, y) * y * 0.001; },
        [&](double x, double y) { return rate(x, y) * x * 0.001; });
    const Grid<double> vorticity = VorticityOf(field), swirl = SwirlOf(field);
    const double sign = coreVorticity > 0 ? 1 : -1;
    EXPECT_NEAR(vorticity(41, 31), coreVorticity, 8.0);
    EXPECT_NEAR(swirl(41, 31), sign * 400.0 * 400.0, 0.02 * 160000);
    EXPECT_NEAR(vorticity(51, 31), coreVorticity * std::exp(-1.0), 8.0);  // one core radius away
    EXPECT_EQ(swirl(76, 31), 0.0);                                        // potential flow far outside
    for (const double value : swirl.Values()) EXPECT_LE(std::fabs(value), std::fabs(swirl(41, 31)));
  }
}

TEST(DerivedScalar, IsZeroOnASingleColumnOrRow) {
  for (const auto& [columns, rows] : {std::pair{1, 1}, {1, 6}, {6, 1}}) {
    VectorField field = MakeField(columns, rows);
    SetVelocities(
        field, [](double x, double y) { return 3 * x - y * y; }, [](double x, double y) { return x * x + 5 * y; });
    for (double& old : field.derivedScalar.Values()) old = 99;
    ExpectEverywhere(VorticityOf(field), 0.0);
    ExpectEverywhere(SwirlOf(field), 0.0);
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
      {"last column: backward in x only", 5, 3, {}, 1000.0 * (9 - 6)},
      {"first row: forward in y only", 3, 1, {}, 1000.0 * (6 - 3)},
      {"last row: backward in y only", 3, 5, {}, 1000.0 * (6 - 9)},
      {"left invalid", 3, 3, {{2, 3}}, 1000.0 * (7 - 6)},
      {"right invalid", 3, 3, {{4, 3}}, 1000.0 * (5 - 6)},
      {"below invalid", 3, 3, {{3, 2}}, 1000.0 * (6 - 7)},
      {"above invalid", 3, 3, {{3, 4}}, 1000.0 * (6 - 5)},
      {"left and below invalid", 3, 3, {{2, 3}, {3, 2}}, 0.0},
      {"left and above invalid", 3, 3, {{2, 3}, {3, 4}}, 1000.0 * (7 - 5)},
      {"left and right invalid", 3, 3, {{2, 3}, {4, 3}}, 0.0},
      {"below and above invalid", 3, 3, {{3, 2}, {3, 4}}, 0.0},
      {"diagonal neighbours do not count", 3, 4, {{2, 3}, {4, 3}, {2, 5}, {4, 5}}, 1000.0 * (6 - 8)},
      {"first column with invalid right", 1, 3, {{2, 3}}, 0.0},
      {"itself invalid, four neighbours", 3, 4, {{3, 4}}, 1000.0 * (6 - 8)},
      {"itself and left invalid", 3, 4, {{3, 4}, {2, 4}}, 0.0},
      {"itself and right invalid", 3, 4, {{3, 4}, {4, 4}}, 0.0},
      {"itself and below invalid", 3, 4, {{3, 4}, {3, 3}}, 0.0},
      {"itself and above invalid", 3, 4, {{3, 4}, {3, 5}}, 0.0},
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

TEST(DerivedScalar, SignsTheSwirlByTheSenseOfRotation) {
  struct Case {
    double uy, vx, expected;  // gradients in 1/s
  };
  for (const Case& c : {Case{-100, 100, 10000}, {100, -100, -10000}, {-25, 4, 100}, {25, -4, -100}, {25, 25, 0}}) {
    VectorField field = MakeField(3, 3);
    SetVelocities(
        field, [&](double, double y) { return c.uy * y / 1000; }, [&](double x, double) { return c.vx * x / 1000; });
    EXPECT_NEAR(SwirlOf(field)(2, 2), c.expected, 1e-8) << c.uy << " " << c.vx;
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

TEST(DerivedScalar, OfVelocitiesWhoseSquareOverflowsIsAnErrorForTheSwirlOnly) {
  VectorField field = MakeField(2, 2);
  SetVelocities(
      field, [](double, double y) { return -1e160 * y; }, [](double x, double) { return 1e160 * x; });
  EXPECT_EQ(VorticityOf(field)(1, 1), 2e163);
  EXPECT_THROW(CalcSwirlingStrength(field), SystemError);
}

TEST(DerivedScalar, CarriesNaNAndInfinityOfAFileWithoutAnError) {
  VectorField field = MakeField(5, 3);
  field.velY(3, 2) = std::numeric_limits<double>::infinity();
  field.velX(4, 3) = std::nan("");
  Grid<double> vorticity;
  ASSERT_NO_THROW(vorticity = VorticityOf(field));
  EXPECT_EQ(vorticity(2, 2), std::numeric_limits<double>::infinity());
  EXPECT_TRUE(std::isnan(vorticity(4, 2)));
  EXPECT_EQ(vorticity(1, 1), 0.0);
  EXPECT_NO_THROW(SwirlOf(field));
}

}  // namespace
}  // namespace quiverion::test
