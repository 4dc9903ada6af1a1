#include "operations/commands/transformations.h"

#include <gtest/gtest.h>

#include "operations/kernels/velocity_changes_plain.h"
#include "platform/text/numbers.h"
#include "support/approved.h"
#include "support/field_compare.h"
#include "support/kernel_compare.h"
#include "support/test_session.h"

namespace quiverion::test {
namespace {

class Transformations : public testing::Test {
 protected:
  TestSession program;
  Context& context = program.context;
  VectorField& field = program.context.field;
};

TEST_F(Transformations, GiveTheBitsOfThePlainLoopsAndStopWhereTheyStop) {
  int stops = 0;
  for (const auto& [x, y] : {std::pair{1.1, -0.3}, {0.0, -0.0}, {2.0, 1.5e308}, {kNaN, 1.0}}) {
    stops += ExpectSameAsPlain(
        [&, x = x, y = y](VectorField& f) {
          RunOn(context, f, [=](Context& c) { TransformCoordinates(c, {.fakVecX = x, .fakVecY = y}); });
        },
        [x = x, y = y](VectorField& f) { plain::ScaleVelocities<CheckedReal>(f, x, y); });
    for (const double sign : {1.0, -1.0}) {
      stops += ExpectSameAsPlain(
          [&, x = x, y = y](VectorField& f) {
            RunOn(context, f, [=](Context& c) { (sign > 0 ? AddConstantVector : SubtractConstantVector)(c, x, y); });
          },
          [=, x = x, y = y](VectorField& f) { plain::ShiftVelocities<CheckedReal>(f, sign * x, sign * y); });
    }
  }
  EXPECT_GT(stops, 200) << "the values must contain errors";
}

TEST_F(Transformations, CoordinatesAndWhatBelongsToThem) {
  std::string told;
  for (const CoordinateTransformation& trafo : {CoordinateTransformation{},
                                                {2, 0, 1, 0, 1, 1},
                                                {1, 0.5, -3, 2, 1, 1},
                                                {1, 0, 1, 0, 1, -2},
                                                {0, 1, 1, -1, 0, 1}}) {
    field = MakeField(2, 2);
    field.posX[1] = field.galileiPointX = 3, field.posY[1] = field.galileiPointY = 5;
    field.streamlineCount = 1;  // the second one is not in use
    field.streamlines[0] = field.streamlines[1] = {3, 5, 70, 80};
    field.velX(2, 2) = 7, field.velY(2, 2) = 11, field.status(2, 2) = 0;  // invalid vectors also
    field.offsetX = 100, field.offsetY = 200;
    TransformCoordinates(context, trafo);
    told += program.TakeLog();
    for (const double value :
         {field.posX[1], field.posY[1], field.galileiPointX, field.galileiPointY, field.streamlines[0][0],
          field.streamlines[0][1], field.streamlines[0][2], field.streamlines[1][0], field.offsetX, field.offsetY,
          field.velX(2, 2), field.velY(2, 2)}) {
      told += FormatNumber(value) + " ";
    }
    told += "\r\n";
  }
  ExpectApproved("transformed_coordinates.txt", told);
}

TEST_F(Transformations, MirrorVectorsWithTheirPositions) {
  const std::pair<bool, bool> options[] = {{true, false}, {false, true}, {true, true}, {false, false}};
  for (const auto& [mirrorX, mirrorY] : options) {
    for (const auto& [columns, rows] : {std::pair(4, 3), std::pair(3, 4), std::pair(1, 5)}) {
      const VectorField before = RandomField(7, columns, rows, {.invalid = 500});
      field = before;
      MirrorField(context, mirrorX, mirrorY);
      EXPECT_EQ(program.TakeLog().find("Keine Option") != std::string::npos, !mirrorX && !mirrorY);
      for (std::int32_t i = 1; i <= columns; ++i) {
        for (std::int32_t j = 1; j <= rows; ++j) {
          const std::int32_t fromI = mirrorX ? columns + 1 - i : i, fromJ = mirrorY ? rows + 1 - j : j;
          EXPECT_EQ(field.velX(i, j), before.velX(fromI, fromJ));
          EXPECT_EQ(field.velY(i, j), before.velY(fromI, fromJ));
          EXPECT_EQ(field.status(i, j), before.status(fromI, fromJ));
          EXPECT_EQ(field.derivedScalar(i, j), before.derivedScalar(i, j));
        }
      }
      MirrorField(context, mirrorX, mirrorY);
      EXPECT_EQ(FirstDifference(before, field), "") << "positions come back with the rest";
    }
  }
}

TEST_F(Transformations, TheRemovedVelocityIsBookedAgainstTheConstantVector) {
  field = MakeField(2, 1);
  field.status(2, 1) = -1;
  field.galileiPointSet = kFlagTrue;
  field.galileiVelX = 1, field.galileiVelY = 2;
  context.decimalSeparator = ',';
  SubtractConstantVector(context, 0.5, -3);
  EXPECT_EQ(std::pair(field.velX(1, 1), field.velY(1, 1)), std::pair(-0.5, 3.0));
  EXPECT_EQ(std::pair(field.velX(2, 1), field.velY(2, 1)), std::pair(0.0, 0.0)) << "not valid";
  EXPECT_EQ(std::pair(field.galileiVelX, field.galileiVelY), std::pair(1.5, -1.0));
  EXPECT_EQ(field.galileiPointSet, kFlagFalse);
  AddConstantVector(context, 0.5, -3);
  EXPECT_EQ(std::pair(field.velX(1, 1), field.galileiVelX), std::pair(0.0, 1.0));
  EXPECT_EQ(program.TakeLog(),
            "Konstanten Vektor (0,5; -3) vom Vektorfeld subtrahieren... fertig\r\n"
            "Konstanten Vektor (0,5; -3) zum Vektorfeld addieren... fertig\r\n");
}

}  // namespace
}  // namespace quiverion::test
