#include "operations/commands/vortex_centres.h"

#include <gtest/gtest.h>

#include <array>

#include "field/formats/load_original_file.h"
#include "operations/kernels/derived_scalar.h"
#include "operations/kernels/vortex_maxima.h"
#include "operations/kernels/vortex_maxima_plain.h"
#include "support/approved.h"
#include "support/error_of.h"
#include "support/field_compare.h"
#include "support/random_fields.h"
#include "support/test_session.h"

namespace quiverion::test {
namespace {

const std::string kHeader = "X [mm]\tY [mm]\tVx [m/s]\tVy [m/s]\t(Swr Str)\xB2 [1/s\xB2]\tDrehsinn\r\n";
TEST(VortexMaxima, AreThoseOfThePlainLoops) {
  std::uint64_t seed = 1;
  ForEverySize([&](std::int32_t columns, std::int32_t rows) {
    for (const Mix& mix :
         {Mix{}, Mix{.special = 400}, Mix{.special = 900, .notFinite = 100}, Mix{.notFinite = 300, .huge = 100}}) {
      const Grid<double> strength = RandomField(++seed, columns, rows, mix).velX;
      Grid<std::int16_t> expected(columns, rows), marks;
      plain::MarkMaxima(strength, expected);
      MarkMaxima(strength, marks);
      ASSERT_TRUE(SameItem(expected, marks)) << columns << "x" << rows << " seed " << seed;
    }
  });
}

// A rigid rotation of four vectors; all have the squared swirling strength 4 / s².
class VortexCentres : public testing::Test {
 protected:
  VortexCentres() {
    field = MakeField(2, 2);
    for (double& x : field.posX) x *= 1000;
    for (double& y : field.posY) y *= 1000;
    SetVelocities(
        field, [](double, double y) { return -y / 500; }, [](double x, double) { return x / 500; });
    field.filePath = "dir/in.2.vas", field.fileName = "in.2.vas", field.fileDirectory = "dir";
    field.infoText = "Info";
    field.galileiPointSet = kFlagTrue, field.galileiPointX = 1.5, field.galileiPointY = 2.5;
    field.galileiVelX = 3.5;
    before = field;
  }

  std::string Find(const std::string& textPath, bool autoTrafo) {
    context.runHadError = context.userAbortRequested = false;
    FindVortexCentres(context, textPath, autoTrafo);
    before.derivedScalar = field.derivedScalar;
    EXPECT_EQ(FirstDifference(before, field), "") << "the field is as before";
    EXPECT_FALSE(context.abortCurrentFile);
    EXPECT_EQ(files.openWrittenFiles, 0);
    return program.TakeLog();
  }

  TestSession program;
  Context& context = program.context;
  VectorField& field = program.context.field;
  MemoryFileSystem& files = program.files;
  VectorField before;
};

TEST_F(VortexCentres, AreAppendedToATextWithOneHeader) {
  std::string told = Find("", false) + Find("new/dir/maxima.txt", false);
  for (double& v : field.velY.Values()) v = -v;  // no rotation: strain
  before = field;
  told += Find("new/dir/maxima.txt", false);
  for (double& u : field.velX.Values()) u = -u;  // the other sense
  before = field;
  Find("new/dir/maxima.txt", false);
  EXPECT_EQ(files.files.size(), 1u);
  ExpectApproved("vortex_centres.txt", told + files.files.at("new/dir/maxima.txt"));
}

TEST_F(VortexCentres, EachCopyMovesWithItsCentre) {
  Find("", true);
  EXPECT_EQ(files.files.size(), 4u);
  LoadOriginalFile(context, "dir/in.2/Swirl2.vas");
  ExpectApproved("vortex_copy.txt", field.infoText);
  EXPECT_EQ(std::pair(field.galileiPointX, field.galileiPointY), std::pair(2000.0, 1000.0));
  EXPECT_EQ(field.galileiPointSet, kFlagTrue);
  EXPECT_EQ(std::pair(field.galileiVelX, field.galileiVelY), std::pair(1.5, 4.0));
  EXPECT_EQ(std::pair(field.velX(2, 1), field.velY(2, 1)), std::pair(0.0, 0.0));
  EXPECT_EQ(std::pair(field.velX(1, 2), field.velY(1, 2)), std::pair(-2.0, -2.0));
}

TEST_F(VortexCentres, APeakMustExceedNotMoreThanFourTimesTheMeanOfItsNeighbours) {
  // Rows from the top; only valid vectors ("x") with neighbours on both axes have a swirling strength, 10^6 / s². The
  // middle of the second field is exactly four times the mean of its eight neighbours.
  struct Case {
    std::array<std::string_view, 3> rows;
    std::int32_t firstPeak, lastPeak;  // columns
  };
  const Case cases[] = {{{" x ", "xxx", " x "}, 2, 2}, {{" x x ", "xxxxx", "  x  "}, 2, 4}};
  for (const Case& c : cases) {
    field = MakeField(static_cast<std::int32_t>(c.rows[0].size()), 3);
    SetVelocities(
        field, [](double, double y) { return -y; }, [](double x, double) { return x; });
    std::string lines;
    for (std::int32_t i = 1; i <= field.columnCount; ++i) {
      for (std::size_t row = 0; row < 3; ++row) {
        field.status(i, 3 - static_cast<std::int32_t>(row)) = c.rows[row][static_cast<std::size_t>(i - 1)] == 'x';
      }
      if (i < c.firstPeak || i > c.lastPeak) continue;
      lines += " " + std::to_string(i) + " \t 2 \t-2 \t " + std::to_string(i) + " \t 1000000 \tLinks\r\n";
    }
    before = field;
    files.files.clear();
    Find("maxima.txt", true);
    EXPECT_EQ(files.files.size(), 1u) << "no copy";
    EXPECT_EQ(files.files["maxima.txt"], kHeader + lines);
  }
}

TEST_F(VortexCentres, CancelEndsTheSeriesOfCopies) {
  files.faults.diskSize = 1000;  // enough for the first copy
  const std::string log = Find("", true);
  EXPECT_EQ(program.ui.messages.size(), 1u);
  EXPECT_EQ(files.files.size(), 1u);
  EXPECT_TRUE(context.userAbortRequested && context.runHadError);
  EXPECT_TRUE(log.ends_with("addieren... fertig\r\nSpeichern der transformierten Vektorfelder beendet.\r\n"));
}

TEST_F(VortexCentres, AnOverflowBetweenTheCopiesLeavesTheInfoAsItWas) {
  // Two rotations and a lone column. The second rotation moves so fast that the velocities of the column overflow.
  field = MakeField(7, 2);
  for (double& x : field.posX) x *= 1e300;
  for (double& y : field.posY) y *= 1e300;
  SetVelocities(
      field, [](double, double y) { return -y; }, [](double x, double) { return x; });
  for (std::int32_t j = 1; j <= 2; ++j) {
    field.status(3, j) = field.status(6, j) = 0;
    field.velX(4, j) += 1e308, field.velX(5, j) += 1e308, field.velX(7, j) = -1e308;
  }
  field.infoText = "Info", field.galileiPointX = 1.5, field.galileiPointSet = kFlagTrue;
  EXPECT_EQ(ErrorOf([&] { FindVortexCentres(context, "", true); }), 6);
  EXPECT_EQ(files.files.size(), 2u) << "the copies of the first rotation's first row";
  EXPECT_EQ(field.infoText, "Info");
  EXPECT_EQ(std::pair(field.galileiPointX, field.galileiPointSet), std::pair(1.5, kFlagTrue));
}

}  // namespace
}  // namespace quiverion::test
