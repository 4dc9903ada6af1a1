// What the commands do to the field. Their log texts are in tests/approved.
#include "operations/commands/view_settings.h"

#include <gtest/gtest.h>

#include "support/field_builder.h"
#include "support/test_session.h"

namespace quiverion::test {
namespace {

class ViewSettings : public testing::Test {
 protected:
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
  std::pair<double, double> Palette() const { return {field.paletteMin, field.paletteMax}; }

  TestSession program;
  Context& context = program.context;
  VectorField& field = program.context.field;
};

TEST_F(ViewSettings, AlwaysShowTheTableOrTheVectorField) {
  field.showTable = true, field.showVectorField = false;
  SetShowTable(context, false);
  EXPECT_TRUE(!field.showTable && field.showVectorField);
  SetShowVectorField(context, false);
  EXPECT_TRUE(field.showTable && !field.showVectorField);
}

TEST_F(ViewSettings, KeepThePaletteInOrder) {
  struct Case {
    void (*set)(Context&, double);
    double value, minAfter, maxAfter;
  };
  for (const Case& c : {Case{SetPaletteMin, 500, 500, 500}, Case{SetPaletteMax, -0.25, -0.25, -0.25},
                        Case{SetPaletteMin, 100, 100, 100}, Case{SetPaletteMax, 0, 0, 0}}) {
    field.paletteMin = 0, field.paletteMax = 100;
    program.TakeLog();
    c.set(context, c.value);
    EXPECT_EQ(Palette(), std::pair(c.minAfter, c.maxAfter));
    const bool other = c.value == 500 || c.value == -0.25;
    EXPECT_EQ(program.TakeLog().find("Dann wäre") != std::string::npos, other) << "equal ends are in order";
  }
}

TEST_F(ViewSettings, FindThePaletteOfTheBackground) {
  struct Case {
    Background background;
    double left, right;  // rates of rotation
    double min, max;
  };
  for (const Case& c : {Case{Background::vorticity, -15, 6, -30, 30}, Case{Background::vorticity, 1, 8, -16, 16},
                        Case{Background::swirl2, -2, 3, 0, 9}, Case{Background::swirl2, -3, 2, 0, 9},
                        Case{Background::none, 1, 2, 7, 8}}) {
    SetRotations(c.left, c.right);
    SetBackground(context, c.background);
    if (c.background == Background::none) field.paletteMin = 7, field.paletteMax = 8;
    FindOptimalPalette(context);
    EXPECT_EQ(Palette(), std::pair(c.min, c.max));
  }
}

}  // namespace
}  // namespace quiverion::test
