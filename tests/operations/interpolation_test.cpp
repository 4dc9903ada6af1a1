#include "operations/kernels/interpolation.h"
#include "operations/commands/interpolate_invalid_vectors.h"

#include <gtest/gtest.h>

#include "operations/kernels/interpolation_plain.h"
#include "support/kernel_compare.h"
#include "support/test_session.h"

namespace quiverion::test {
namespace {

TEST(Interpolation, FillsWhatThePlainLoopsFillInTheSamePasses) {
  bool fastFilled = false, plainFilled = false;
  const int stops = ExpectSameAsPlain(
      [&](VectorField& field) {
        fastFilled = Interpolate(field);
        EXPECT_EQ(fastFilled, plainFilled);
      },
      [&](VectorField& field) { plainFilled = plain::Interpolate<CheckedReal>(field); });
  EXPECT_GT(stops, 20) << "the mixes must contain errors";
}

// Holes of every shape, deep and ragged, and statuses that mean something while a pass runs.
TEST(Interpolation, FillsDeepHolesInTheSamePasses) {
  for (std::uint64_t seed = 1; seed <= 60; ++seed) {
    const Mix mix = {.huge = seed % 3 == 0 ? 4u : 0u};
    VectorField field = RandomField(seed, 37, 23, mix);
    std::mt19937_64 random(seed);
    for (int hole = 0; hole < 6; ++hole) {
      const auto i0 = static_cast<std::int32_t>(random() % 30), j0 = static_cast<std::int32_t>(random() % 18);
      const std::int32_t kind = hole == 5 ? -1 : hole == 4 ? 127 : 0;
      for (std::int32_t i = 1; i <= 12; ++i) {
        for (std::int32_t j = 1; j <= 9; ++j) {
          if (random() % 12 != 0 && i0 + i <= 37 && j0 + j <= 23) field.status(i0 + i, j0 + j) = kind;
        }
      }
    }
    VectorField expected = field;
    const int expectedError = ErrorOf([&] { plain::Interpolate<CheckedReal>(expected); });
    EXPECT_EQ(ErrorOf([&] { Interpolate(field); }), expectedError);
    ASSERT_EQ(ResultDifference(expected, field), "") << seed;
  }
}

TEST(Interpolation, FillsAHoleFromItsCorners) {
  VectorField field = MakeField(5, 5);
  SetVelocities(
      field, [](double x, double y) { return x + 10 * y; }, [](double, double) { return 1.0; });
  field.validVectorCount = 16;
  for (std::int32_t i = 2; i <= 4; ++i) {
    for (std::int32_t j = 2; j <= 4; ++j) field.status(i, j) = 0, field.velX(i, j) = 1e9;
  }
  ASSERT_TRUE(Interpolate(field));
  const double corner = (11 + 21 + 31 + 12 + 13) / 5.0, right = (13 + 14 + 15 + 25 + 35) / 5.0;
  EXPECT_EQ(field.velX(2, 2), corner);
  EXPECT_EQ(field.velX(3, 2), (12 + corner + 13 + 14 + right) / 5.0);  // corners are neighbours from the second pass on
  EXPECT_EQ(field.status(3, 3), 3);
  EXPECT_EQ(field.validVectorCount, 25);
}

TEST(Interpolation, SaysWhatItCannotFill) {
  TestSession program;
  VectorField& field = program.context.field;
  field = MakeField(5, 1);
  field.validVectorCount = 1;
  const std::int32_t statuses[] = {1, 0, -1, 0, 0};
  std::copy(std::begin(statuses), std::end(statuses), field.status.Row(1));
  InterpolateInvalidVectors(program.context);
  EXPECT_EQ(program.TakeLog(),
            "Interpolation... !!! FEHLER !!!\r\n"
            "    Interpolation mit den vorhandenen Daten nicht möglich!\r\nfertig\r\n");
  EXPECT_TRUE(program.context.runHadError);
  EXPECT_FALSE(program.context.abortCurrentFile);
  const std::vector<std::int32_t> after(field.status.Row(1), field.status.Row(1) + 5);
  EXPECT_EQ(after, std::vector<std::int32_t>({1, 3, -1, 0, 0}));
  EXPECT_EQ(field.validVectorCount, 2);
}

}  // namespace
}  // namespace quiverion::test
