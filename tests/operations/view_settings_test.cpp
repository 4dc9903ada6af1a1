#include "operations/view_settings.h"

#include <gtest/gtest.h>

#include "support/field_builder.h"
#include "support/test_session.h"

namespace quiverion::test {
namespace {

using Pieces = std::vector<std::string>;

class ViewSettings : public testing::Test {
 protected:
  // What was logged since the last call, one text per piece.
  Pieces TakePieces() {
    Pieces pieces;
    for (const auto& piece : program.recorder.pieces) pieces.push_back(piece.text);
    program.recorder.pieces.clear();
    return pieces;
  }

  // Two rigid rotations (rates in 1/s) side by side, parted by a column without vectors.
  void SetRotations(double left, double right) {
    field = MakeField(7, 3);
    for (double& x : field.posX) x *= 1000;
    for (double& y : field.posY) y *= 1000;
    for (std::int32_t j = 1; j <= 3; ++j) {
      for (std::int32_t i = 1; i <= 7; ++i) {
        const double rate = i < 4 ? left : right;
        field.velX(i, j) = -rate * j;
        field.velY(i, j) = rate * i;
      }
      field.status(4, j) = 0;
    }
  }

  TestSession program;
  Context& context = program.context;
  VectorField& field = program.context.field;
};

TEST_F(ViewSettings, AlwaysShowTheTableOrTheVectorField) {
  const std::string forced =
      "Jetzt wird weder Tabelle noch Vektorfeld angezeigt. Das ist in Quiverion nicht erlaubt!\r\n    -> '";
  field.showTable = true, field.showVectorField = false;
  SetShowTable(context, false);
  EXPECT_TRUE(!field.showTable && field.showVectorField);
  EXPECT_EQ(TakePieces(),
            (Pieces{"'Tabelle anzeigen' ausgeschaltet\r\n", forced + "Vektorfeld anzeigen' eingeschaltet\r\n"}));
  SetShowVectorField(context, false);
  EXPECT_TRUE(field.showTable && !field.showVectorField);
  EXPECT_EQ(TakePieces(),
            (Pieces{"'Vektorfeld anzeigen' ausgeschaltet\r\n", forced + "Tabelle anzeigen' eingeschaltet\r\n"}));
}

TEST_F(ViewSettings, ChooseABackgroundWithItsPalette) {
  field.paletteMin = 11, field.paletteMax = 22;
  SetBackground(context, Background::swirl2);
  EXPECT_EQ(field.background, Background::swirl2);
  EXPECT_EQ(std::pair(field.paletteMin, field.paletteMax), std::pair(0.0, 1000000.0));
  SetBackground(context, Background::vorticity);
  EXPECT_EQ(field.background, Background::vorticity);
  EXPECT_EQ(std::pair(field.paletteMin, field.paletteMax), std::pair(-2000.0, 2000.0));
  SetBackground(context, Background::none);
  EXPECT_EQ(field.background, Background::none);
  EXPECT_EQ(std::pair(field.paletteMin, field.paletteMax), std::pair(-2000.0, 2000.0));
  EXPECT_EQ(TakePieces(), (Pieces{"'(Swirling Strength)² als Hintergrund im Vektorfeld anzeigen' gewählt\r\n",
                                  "'Vorticity als Hintergrund im Vektorfeld anzeigen' gewählt\r\n",
                                  "'Keinen Hintergrund im Vektorfeld anzeigen' gewählt\r\n"}));
}

TEST_F(ViewSettings, KeepThePaletteInOrder) {
  struct Case {
    void (*set)(Context&, double);
    double value, minAfter, maxAfter;
    std::string log;
  };
  const std::string minimum = "Minimalen Wert für Farbpalette auf ", maximum = "Maximalen Wert für Farbpalette auf ";
  const std::string aboveMax =
      "Dann wäre allerdings der bisherige 'maximale Wert' kleiner als der jetzt gewählte "
      "'minimale Wert'\r\n    -> Stelle 'maximalen Wert' auch neu ein: 500\r\n";
  const std::string belowMin =
      "Dann wäre allerdings der bisherige 'minimale Wert' größer als der jetzt gewählte "
      "'maximale Wert'\r\n    -> Stelle 'minimalen Wert' auch neu ein: -0.25\r\n";
  const Case cases[] = {{SetPaletteMin, 500, 500, 500, minimum + "500 gestellt\r\n" + aboveMax},
                        {SetPaletteMax, -0.25, -0.25, -0.25, maximum + "-0.25 gestellt\r\n" + belowMin},
                        {SetPaletteMin, 100, 100, 100, minimum + "100 gestellt\r\n"},
                        {SetPaletteMax, 0, 0, 0, maximum + "0 gestellt\r\n"}};
  for (const Case& c : cases) {
    field.paletteMin = 0, field.paletteMax = 100;
    c.set(context, c.value);
    EXPECT_EQ(program.TakeLog(), c.log);
    EXPECT_EQ(std::pair(field.paletteMin, field.paletteMax), std::pair(c.minAfter, c.maxAfter)) << c.log;
  }
}

Pieces PaletteFound(const std::string& min, const std::string& max) {
  return {"Optimale Werte für Farbpalette automatisch suchen... ", "fertig\r\n",
          "    Minimaler Wert auf " + min + " eingestellt\r\n    Maximaler Wert auf " + max + " eingestellt\r\n"};
}

TEST_F(ViewSettings, FindThePaletteOfTheBackground) {
  struct Case {
    Background background;
    double left, right;  // rates of rotation
    std::string min, max;
  };
  const Case cases[] = {{Background::vorticity, -15, 6, "-30", "30"},
                        {Background::vorticity, 1, 8, "-16", "16"},
                        {Background::swirl2, -2, 3, "0", "9"},
                        {Background::swirl2, -3, 2, "0", "9"},
                        {Background::swirl2, 0, 0.5, "0", "0.25"}};
  for (const Case& c : cases) {
    SetRotations(c.left, c.right);
    SetBackground(context, c.background);
    TakePieces();
    FindOptimalPalette(context);
    EXPECT_EQ(TakePieces(), PaletteFound(c.min, c.max));
    EXPECT_EQ(field.paletteMin, std::stod(c.min));
    EXPECT_EQ(field.paletteMax, std::stod(c.max));
  }
}

}  // namespace
}  // namespace quiverion::test
