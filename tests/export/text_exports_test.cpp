// The exports, byte for byte on small fields; the numbers of a rigid rotation and of a Lamb-Oseen vortex.
#include "export/text_exports.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "platform/text/numbers.h"
#include "support/error_of.h"
#include "support/random_fields.h"
#include "support/test_session.h"

namespace quiverion::test {
namespace {

using Operation = void (*)(Context&, const std::string&);

// Every operation with the beginning of its announcement.
struct Export {
  Operation operation;
  std::string announcement;
};
const Export kExports[] = {{ExportStanfordVectorField, "Vektorfeld für Stanford"},
                           {ExportStanfordSwirl2, "(Swirling Strength)² für Stanford"},
                           {ExportStanfordVorticity, "Vorticity für Stanford"},
                           {ExportStanfordVelocityProfile, "Geschwindigkeitsprofil für Stanford"},
                           {ExportTecPlotSwirl, "Swirling Strength für TecPlot"},
                           {ExportTecPlotVorticity, "Vorticity für TecPlot"},
                           {ExportMatlabVectorField, "Vektorfeld für Matlab"},
                           {ExportMatlabSwirl2, "(Swirling Strength)² für Matlab"}};

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

TEST_F(TextExports, WriteTheirLines) {
  const std::string header = "X[mm]\tY[mm]\tVx[m/s]\tVy[m/s]\t|V|[m/s]\tGalilei-Trafo:\t 1.5 \t-2 ";
  const std::string vectors =
      "-0.5 \t 1 \t 0.25 \t 0.125 \t 0.279508497187474 \r\n"
      " 0 \t 1 \t 0.25 \t 0 \t 0.25 \r\n"
      "-0.5 \t 1.5 \t 0.375 \t 0.125 \t 0.395284707521047 \r\n"
      " 0 \t 1.5 \t 0.375 \t 0 \t 0.375 \r\n"
      " 0.5 \t 1.5 \t 0.375 \t-0.125 \t 0.395284707521047 \r\n";
  // The last column has no neighbour in y where its row 1 is masked, and the masked point none on its right.
  const std::string swirl2 = "\r\n-0.5 \t-62500 \t-62500 \r\n 0 \t-62500 \t-62500 \r\n 0.5 \t 0 \t 0 \r\n";
  const std::string vorticity = "\r\n-0.5 \t-500 \t-500 \r\n 0 \t-500 \t-500 \r\n 0.5 \t 0 \t 0 \r\n";
  const std::string corner = "X[mm]/Y[mm]\t 1.5 \t 1 ";
  std::string matlabGrid = "0" + std::string("\t 1.5 \t 1 ") + swirl2;
  std::replace(matlabGrid.begin(), matlabGrid.end(), '\t', ';');
  const std::pair<Operation, std::string> cases[] = {
      {ExportStanfordVectorField, header + "\r\n" + vectors},
      {ExportStanfordSwirl2, corner + swirl2},
      {ExportStanfordVorticity, corner + vorticity},
      {ExportStanfordVelocityProfile,
       "Y[mm]\tVx[m/s]\tVy[m/s]\t|V|[m/s]\r\n 1 \t 0.25 \t 0.0625 \t 0.257694101601104 \r\n"
       " 1.5 \t 0.375 \t 0 \t 0.375 \r\n"},
      {ExportTecPlotSwirl,
       "-0.5   1.5  -250 \r\n-0.5   1  -250 \r\n 0   1.5  -250 \r\n 0   1  -250 \r\n 0.5   1.5   0 \r\n"
       " 0.5   1   0 \r\n"},
      {ExportTecPlotVorticity,
       "-0.5   1.5  -500 \r\n-0.5   1  -500 \r\n 0   1.5  -500 \r\n 0   1  -500 \r\n 0.5   1.5   0 \r\n"
       " 0.5   1   0 \r\n"},
      {ExportMatlabVectorField,
       "-0.5 ; 1 ; 0.25 ; 0.125 \r\n 0 ; 1 ; 0.25 ; 0 \r\n 0.5 ; 1 ;0;0\r\n-0.5 ; 1.5 ; 0.375 ; 0.125 \r\n"
       " 0 ; 1.5 ; 0.375 ; 0 \r\n 0.5 ; 1.5 ; 0.375 ;-0.125 \r\n"},
      {ExportMatlabSwirl2, matlabGrid}};
  for (const auto& [operation, text] : cases) EXPECT_EQ(Written(operation), text);
  context.field.status(3, 1) = 0;  // invalid like a masked one
  EXPECT_EQ(Written(ExportStanfordVectorField), header + "\r\n" + vectors);
  context.field.galileiPointSet = kFlagTrue;
  EXPECT_EQ(Written(ExportStanfordVectorField), header + "\tbei:\t 1E-05 \t 3 \r\n" + vectors);
  for (std::int32_t& status : context.field.status.Values()) status = 0;
  EXPECT_EQ(Written(ExportStanfordVelocityProfile), "Y[mm]\tVx[m/s]\tVy[m/s]\t|V|[m/s]\r\n");
}

TEST_F(TextExports, UseTheDecimalSeparatorAndSayWhatTheyDo) {
  context.decimalSeparator = ',';
  for (const Export& tested : kExports) {
    program.TakeLog();
    EXPECT_EQ(Written(tested.operation).find('.'), std::string::npos) << tested.announcement;
    EXPECT_EQ(program.TakeLog(), tested.announcement + " unter 'neu/a.txt' exportieren... fertig\r\n");
  }
  EXPECT_FALSE(context.runHadError);
}

// Longer than any block that is written at once, with numbers of every length.
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

// Circulation G and core radius a: the vorticity is G / (pi a²) exp(-r²/a²). Read back from the file as another program
// would.
TEST_F(TextExports, LeaveTheOldFileWhereANumberOverflows) {
  context.field.velX(1, 1) = context.field.velX(2, 1) = 1.5E308;  // so do the length and the sum of the row
  for (const int which : {0, 3}) {
    program.files.files["neu/a.txt"] = "old";
    program.TakeLog();
    kExports[which].operation(context, "neu/a.txt");
    EXPECT_EQ(program.files.files["neu/a.txt"], "old");
    EXPECT_TRUE(context.runHadError && !context.abortCurrentFile);
    EXPECT_EQ(
        program.TakeLog(),
        kExports[which].announcement +
            " unter 'neu/a.txt' exportieren... !!! FEHLER !!!\r\n    Die Datei 'neu/a.txt' kann nicht gespeichert "
            "werden, da während des Schreibens folgender Fehler aufgetreten ist:\r\n    Überlauf   (Fehler-Nr. 6)\r\n");
  }
}

TEST_F(TextExports, PassOnTheErrorsOfTheirQuantity) {
  context.field.posX[1] = context.field.posX[0];
  for (const int which : {1, 2, 4, 5, 7}) {
    EXPECT_EQ(ErrorOf([&] { kExports[which].operation(context, "neu/a.txt"); }), 11);
    EXPECT_TRUE(program.files.files.empty());
    EXPECT_TRUE(program.files.IsDirectory("neu")) << "the directory comes first";
  }
}

}  // namespace
}  // namespace quiverion::test
