#include "operations/kernels/filter_kernel.h"
#include "operations/commands/filters.h"

#include <gtest/gtest.h>

#include "operations/kernels/filters_plain.h"
#include "operations/kernels/mathematical.h"
#include "support/kernel_compare.h"
#include "support/test_session.h"

namespace quiverion::test {
namespace {

WeightMatrix RandomWeights(std::uint64_t seed, std::int32_t k0, std::int32_t k1, std::int32_t l0, std::int32_t l1) {
  std::mt19937_64 random(seed);
  WeightMatrix weights(k0, k1, l0, l1, 0.0);
  for (std::int32_t k = k0; k <= k1; ++k) {
    // Integers of both signs, so that weights sometimes cancel to 0.
    for (std::int32_t l = l0; l <= l1; ++l) weights(k, l) = static_cast<double>(random() % 5) - 1.0;
  }
  return weights;
}

TEST(FilterKernel, GivesTheBitsAndTheStopOfThePlainLoops) {
  const double infinity = std::numeric_limits<double>::infinity();
  const WeightMatrix kernels[] = {{-1, 1, -1, 1, 1.0},
                                  {-2, 2, -2, 2, 0.3},
                                  RandomWeights(1, -1, 1, -1, 1),
                                  RandomWeights(2, -2, 2, -2, 2),
                                  {-1, 1, -1, 1, 1e308},
                                  {-1, 1, -1, 1, infinity},
                                  RandomWeights(3, -3, 2, -1, 4)};  // no command makes it: the plain loops serve
  int allStops = 0;
  for (const WeightMatrix& weights : kernels) {
    const int stops =
        ExpectSameAsPlain([&](VectorField& field) { ApplyFilterKernel(field, weights); },
                          [&](VectorField& field) { plain::ApplyFilterKernel<CheckedReal>(field, weights); });
    allStops += stops;
    if (HasFailure()) FAIL() << "kernel columns " << weights.FirstK() << ".." << weights.LastK();
  }
  EXPECT_GT(allStops, 500) << "the mixes must contain errors";
}

TEST(FilterKernel, VelocityProfileHasTheSumsOfThePlainLoops) {
  const auto weights = [](const VectorField& field, double value) {
    return WeightMatrix(1 - field.columnCount, field.columnCount - 1, 0, 0, value);
  };
  for (const double value : {1.0, -0.7, 0.0}) {
    ExpectSameAsPlain([&](VectorField& field) { ApplyFilterKernel(field, weights(field, value)); },
                      [&](VectorField& field) { plain::ApplyFilterKernel<CheckedReal>(field, weights(field, value)); });
  }
}

// A field at rest, except for 1 m/s at (1, 1), with (2, 1) masked and (2, 2) invalid.
TEST(Filters, WeighFillAndLeaveMaskedVectorsAlone) {
  struct Case {
    void (*filter)(Context&);
    double atPeak, atInvalid;  // x components
  };
  const Case cases[] = {{FilterRect3x3, 1.0 / 2, 1.0 / 7},
                        {FilterRect5x5, 1.0 / 7, 1.0 / 14},
                        {FilterGauss3x3, 4.0 / 6, 1.0 / 10},
                        {FilterGauss5x5, 36.0 / 81, 16.0 / 165},
                        {FilterVelocityProfile, 1.0 / 3, 0.0}};
  for (const Case& test : cases) {
    TestSession program;
    VectorField& field = program.context.field;
    field = MakeField(4, 5);
    field.validVectorCount = 18;
    field.velX(1, 1) = 1.0;
    field.velX(2, 1) = 77.0, field.status(2, 1) = -1;
    field.velX(2, 2) = 99.0, field.status(2, 2) = 0;
    test.filter(program.context);
    const std::string log = program.TakeLog();
    EXPECT_EQ(field.velX(1, 1), test.atPeak) << log;
    EXPECT_EQ(field.velX(2, 2), test.atInvalid) << log;
    EXPECT_EQ(field.velX(2, 1), 77.0) << log;
    EXPECT_EQ(field.status(1, 1), 2) << log;
    EXPECT_EQ(field.status(2, 2), 2) << log;
    EXPECT_EQ(field.status(2, 1), -1) << log;
    EXPECT_EQ(field.validVectorCount, 19) << log;
  }
}

TEST(Mathematical, BinomialCoefficientsAndArcCos) {
  EXPECT_EQ(PascalRow(5), std::vector<double>({1, 5, 10, 10, 5, 1}));
  EXPECT_EQ(BinomialCoefficient(4, 2), 6.0);
  EXPECT_EQ(ErrorOf([] { BinomialCoefficient(2, 3); }), 5);
  EXPECT_EQ(ErrorOf([] { ArcCos(1.0000000000000002); }), 5);
  EXPECT_EQ(ErrorOf([] { BinomialCoefficient(2, -1); }), 9);
}

}  // namespace
}  // namespace quiverion::test
