#include "operations/view_settings.h"

#include <gtest/gtest.h>

#include <limits>

#include "platform/system_error.h"
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

TEST_F(ViewSettings, LogEverySwitch) {
  struct Switch {
    const char* name;
    void (*set)(Context&, bool);
    bool (*get)(const VectorField&);
  };
  const Switch switches[] = {
      {"'Header anzeigen'", SetShowHeader, [](const VectorField& f) { return f.showHeader; }},
      {"'Tabelle anzeigen'", SetShowTable, [](const VectorField& f) { return f.showTable; }},
      {"'Vektorfeld anzeigen'", SetShowVectorField, [](const VectorField& f) { return f.showVectorField; }},
      {"'Koordinatensystem anzeigen'", SetShowCoordSystem,
       [](const VectorField& f) { return f.showCoordSystem == kFlagTrue; }},
      {"'Seitenverhältnis 1:1'", SetAspectRatio, [](const VectorField& f) { return f.aspectRatio1to1 == kFlagTrue; }}};
  for (const Switch& s : switches) {
    field.showTable = field.showVectorField = true;
    for (const bool on : {true, false, true}) {
      s.set(context, on);
      EXPECT_EQ(s.get(field), on) << s.name;
      EXPECT_EQ(TakePieces(), Pieces{s.name + std::string(on ? " eingeschaltet\r\n" : " ausgeschaltet\r\n")});
    }
  }
}

TEST_F(ViewSettings, StoreWhatAVasFileHoldsForAFlag) {
  SetShowCoordSystem(context, true);
  SetAspectRatio(context, true);
  EXPECT_EQ(field.showCoordSystem, -1);
  EXPECT_EQ(field.aspectRatio1to1, -1);
  SetShowCoordSystem(context, false);
  EXPECT_EQ(field.showCoordSystem, 0);
}

TEST_F(ViewSettings, AlwaysShowTheTableOrTheVectorField) {
  const std::string first =
      "Jetzt wird weder Tabelle noch Vektorfeld angezeigt. Das ist in Quiverion nicht erlaubt!\r\n";
  struct Case {
    bool table, vectorField;  // before
    void (*set)(Context&, bool);
    bool on;
    bool tableAfter, vectorFieldAfter;
    Pieces log;
  };
  const Case cases[] = {
      {true,
       false,
       SetShowTable,
       false,
       false,
       true,
       {"'Tabelle anzeigen' ausgeschaltet\r\n", first + "    -> 'Vektorfeld anzeigen' eingeschaltet\r\n"}},
      {false,
       true,
       SetShowVectorField,
       false,
       true,
       false,
       {"'Vektorfeld anzeigen' ausgeschaltet\r\n", first + "    -> 'Tabelle anzeigen' eingeschaltet\r\n"}},
      {true, true, SetShowVectorField, false, true, false, {"'Vektorfeld anzeigen' ausgeschaltet\r\n"}},
      {true, true, SetShowTable, false, false, true, {"'Tabelle anzeigen' ausgeschaltet\r\n"}},
      {false, true, SetShowTable, false, false, true, {"'Tabelle anzeigen' ausgeschaltet\r\n"}},
      {false, false, SetShowTable, true, true, false, {"'Tabelle anzeigen' eingeschaltet\r\n"}}};
  for (const Case& c : cases) {
    field.showTable = c.table, field.showVectorField = c.vectorField;
    c.set(context, c.on);
    EXPECT_EQ(TakePieces(), c.log);
    EXPECT_EQ(field.showTable, c.tableAfter) << c.log[0];
    EXPECT_EQ(field.showVectorField, c.vectorFieldAfter) << c.log[0];
  }
}

TEST_F(ViewSettings, TakeTheScaleFactorAsItIs) {
  for (const auto& [value, text] : {std::pair<double, std::string>{2.5, "2.5"}, {-3, "-3"}, {1e-5, "1E-05"}}) {
    SetScaleFactor(context, value);
    EXPECT_EQ(field.scaleFactor, value);
    EXPECT_EQ(TakePieces(), Pieces{"Benutzerdefinierten Skalierungsfaktor auf " + text + " gestellt\r\n"});
  }
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
    double min, max;  // before
    void (*set)(Context&, double);
    double value;
    double minAfter, maxAfter;
    Pieces log;
  };
  const std::string aboveMax =
      "Dann wäre allerdings der bisherige 'maximale Wert' kleiner als der jetzt gewählte "
      "'minimale Wert'\r\n    -> Stelle 'maximalen Wert' auch neu ein: ";
  const std::string belowMin =
      "Dann wäre allerdings der bisherige 'minimale Wert' größer als der jetzt gewählte "
      "'maximale Wert'\r\n    -> Stelle 'minimalen Wert' auch neu ein: ";
  const Case cases[] = {
      {0,
       100,
       SetPaletteMin,
       500,
       500,
       500,
       {"Minimalen Wert für Farbpalette auf 500 gestellt\r\n", aboveMax + "500\r\n"}},
      {0,
       100,
       SetPaletteMax,
       -0.25,
       -0.25,
       -0.25,
       {"Maximalen Wert für Farbpalette auf -0.25 gestellt\r\n", belowMin + "-0.25\r\n"}},
      {0, 100, SetPaletteMin, 100, 100, 100, {"Minimalen Wert für Farbpalette auf 100 gestellt\r\n"}},
      {5, 100, SetPaletteMax, 5, 5, 5, {"Maximalen Wert für Farbpalette auf 5 gestellt\r\n"}},
      {0, 100, SetPaletteMin, -1.5e20, -1.5e20, 100, {"Minimalen Wert für Farbpalette auf -1.5E+20 gestellt\r\n"}},
      {0, 100, SetPaletteMax, 0.1, 0, 0.1, {"Maximalen Wert für Farbpalette auf 0.1 gestellt\r\n"}}};
  for (const Case& c : cases) {
    field.paletteMin = c.min, field.paletteMax = c.max;
    c.set(context, c.value);
    EXPECT_EQ(TakePieces(), c.log);
    EXPECT_EQ(field.paletteMin, c.minAfter) << c.log[0];
    EXPECT_EQ(field.paletteMax, c.maxAfter) << c.log[0];
  }
}

TEST_F(ViewSettings, PutEveryCommentOnALineOfItsOwn) {
  struct Case {
    std::string before, comment, after;
  };
  const Case cases[] = {{"", "Düse 3", "Düse 3\r\n"},
                        {"alt", "neu", "alt\r\nneu\r\n"},
                        {"alt\r\n", "neu", "alt\r\nneu\r\n"},
                        {"alt\n", "neu", "alt\nneu\r\n"},
                        {"alt\r", "neu", "alt\r\r\nneu\r\n"},
                        {"alt", "", "alt\r\n\r\n"},
                        {"", "", "\r\n"}};
  for (const Case& c : cases) {
    field.infoText = c.before;
    InsertInfoComment(context, c.comment);
    EXPECT_EQ(field.infoText, c.after);
    EXPECT_EQ(TakePieces(), (Pieces{"Kommentar in Info-Text einfügen... ", "fertig\r\n"}));
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
  const Case cases[] = {{Background::vorticity, -15, 6, "-30", "30"}, {Background::vorticity, -6, 15, "-30", "30"},
                        {Background::vorticity, -4, -2, "-8", "8"},   {Background::vorticity, 1, 8, "-16", "16"},
                        {Background::vorticity, 0, 0, "0", "0"},      {Background::swirl2, -2, 3, "0", "9"},
                        {Background::swirl2, -3, 2, "0", "9"},        {Background::swirl2, 0, 0.5, "0", "0.25"},
                        {Background::swirl2, 0, 0, "0", "0"}};
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

TEST_F(ViewSettings, CountInvalidPointsForThePaletteToo) {
  field = MakeField(3, 3);
  field.velY(1, 2) = -0.5, field.velY(3, 2) = 0.5;
  field.status(2, 2) = 0;  // the only point with a vorticity
  SetBackground(context, Background::vorticity);
  FindOptimalPalette(context);
  EXPECT_EQ(field.paletteMax, 500);
}

TEST_F(ViewSettings, ChangeNothingInThePaletteSearchWithoutBackground) {
  SetRotations(1, 2);
  field.paletteMin = 3, field.paletteMax = 4;
  FindOptimalPalette(context);
  EXPECT_EQ(TakePieces(), (Pieces{"Optimale Werte für Farbpalette automatisch suchen... ",
                                  "Kein Hintergrund eingestellt -> fertig"}));
  EXPECT_EQ(std::pair(field.paletteMin, field.paletteMax), std::pair(3.0, 4.0));
}

TEST_F(ViewSettings, LetAnArithmeticErrorOfThePaletteSearchEscape) {
  SetRotations(1, 2);
  field.posX[1] = field.posX[0];
  for (const Background background : {Background::vorticity, Background::swirl2}) {
    SetBackground(context, background);
    TakePieces();
    EXPECT_THROW(FindOptimalPalette(context), SystemError);
    EXPECT_EQ(TakePieces(), Pieces{"Optimale Werte für Farbpalette automatisch suchen... "});
    EXPECT_FALSE(context.abortCurrentFile || context.runHadError) << "that is up to the run driver";
  }
  EXPECT_EQ(std::pair(field.paletteMin, field.paletteMax), std::pair(0.0, 1000000.0));
}

}  // namespace
}  // namespace quiverion::test
