// The exports, byte for byte on a small field.
#include "export/text_exports.h"

#include <gtest/gtest.h>

#include "platform/text/numbers.h"
#include "support/approved.h"
#include "support/error_of.h"
#include "support/random_fields.h"
#include "support/test_session.h"

namespace quiverion::test {
namespace {

using Operation = void (*)(Context&, const std::string&);

constexpr Operation kExports[] = {ExportStanfordVectorField,     ExportStanfordSwirl2, ExportStanfordVorticity,
                                  ExportStanfordVelocityProfile, ExportTecPlotSwirl,   ExportTecPlotVorticity,
                                  ExportMatlabVectorField,       ExportMatlabSwirl2};

class TextExports : public testing::Test {
 protected:
  // 3 x 2 vectors 0.5 mm apart that turn clockwise with 250 rad/s; the last of row 1 is masked.
  TextExports() {
    VectorField& field = context.field;
    field = MakeField(3, 2);
    field.posX = {-0.5, 0.0, 0.5};
    field.posY = {1.0, 1.5};
    SetVelocities(
        field, [](double, double y) { return 0.25 * y; }, [](double x, double) { return -0.25 * x; });
    field.status(3, 1) = -1;
    field.galileiVelX = 1.5;
    field.galileiVelY = -2.0;
    field.galileiPointX = 1E-5;
    field.galileiPointY = 3.0;
  }

  std::string Written(Operation operation) {
    operation(context, "neu/a.txt");
    return program.files.files["neu/a.txt"];
  }

  TestSession program;
  Context& context = program.context;
};

TEST_F(TextExports, WriteTheirLinesAndSayWhatTheyDo) {
  std::string text;
  for (const char separator : {'.', ','}) {
    context.decimalSeparator = separator;
    for (const Operation operation : kExports) text += Written(operation) + program.TakeLog() + "\r\n";
  }
  context.decimalSeparator = '.';
  context.field.status(3, 1) = 0;  // invalid like a masked one
  context.field.galileiPointSet = kFlagTrue;
  text += Written(ExportStanfordVectorField);
  for (std::int32_t& status : context.field.status.Values()) status = 0;
  text += Written(ExportStanfordVelocityProfile);
  ExpectApproved("exports.txt", text);
  EXPECT_FALSE(context.runHadError);
}

// Longer than any block written at once, with numbers of every length.
TEST_F(TextExports, LoseNothingOfALongFile) {
  VectorField& field = context.field;
  field = RandomField(3, 71, 67, {.invalid = 100, .special = 200, .notFinite = 50});
  std::string expected;
  for (std::int32_t j = 1; j <= field.rowCount; ++j) {
    for (std::int32_t i = 1; i <= field.columnCount; ++i) {
      AppendPrintNumber(expected, field.posX[static_cast<std::size_t>(i - 1)], '.');
      AppendPrintNumber(expected += ';', field.posY[static_cast<std::size_t>(j - 1)], '.');
      expected += ';';
      if (field.status(i, j) > 0) {
        AppendPrintNumber(expected, field.velX(i, j), '.');
        AppendPrintNumber(expected += ';', field.velY(i, j), '.');
      } else {
        expected += "0;0";
      }
      expected += "\r\n";
    }
  }
  EXPECT_TRUE(Written(ExportMatlabVectorField) == expected);
}

TEST_F(TextExports, LeaveTheOldFileWhereANumberOverflows) {
  context.field.velX(1, 1) = context.field.velX(2, 1) = 1.5E308;  // so do the length and the sum of the row
  for (const Operation operation : {ExportStanfordVectorField, ExportStanfordVelocityProfile}) {
    program.files.files["neu/a.txt"] = "old";
    EXPECT_EQ(Written(operation), "old");
    EXPECT_TRUE(context.runHadError && !context.abortCurrentFile);
    EXPECT_TRUE(program.TakeLog().ends_with("folgender Fehler aufgetreten ist:\r\n    Überlauf   (Fehler-Nr. 6)\r\n"));
  }
}

TEST_F(TextExports, PassOnTheErrorsOfTheirQuantity) {
  context.field.posX[1] = context.field.posX[0];
  for (const int which : {1, 2, 4, 5, 7}) {
    EXPECT_EQ(ErrorOf([&] { kExports[which](context, "neu/a.txt"); }), 11);
    EXPECT_TRUE(program.files.files.empty());
    EXPECT_TRUE(program.files.IsDirectory("neu")) << "the directory comes first";
  }
}

}  // namespace
}  // namespace quiverion::test
