#include "operations/interpolation.h"

#include <gtest/gtest.h>

#include "operations/interpolation_plain.h"
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
