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
