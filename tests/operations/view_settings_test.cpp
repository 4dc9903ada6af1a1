// The effect of the commands on the field. Their log texts are in tests/approved.
#include "operations/commands/view_settings.h"

#include <gtest/gtest.h>

#include "platform/text/numbers.h"
#include "support/approved.h"
#include "support/field_builder.h"
#include "support/test_session.h"

namespace quiverion::test {
namespace {

class ViewSettings : public testing::Test {
 protected:
  // Two rigid rotations (rates in 1/s) side by side, separated by a column without vectors.
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
  field.showTable = true, field.showVectorField = false;
  SetShowTable(context, false);
  EXPECT_TRUE(!field.showTable && field.showVectorField);
  SetShowVectorField(context, false);
  EXPECT_TRUE(field.showTable && !field.showVectorField);
}

TEST_F(ViewSettings, SetThePalette) {
  std::string told;
  const auto tell = [&] {
    told += program.TakeLog() + FormatNumber(field.paletteMin) + " " + FormatNumber(field.paletteMax) + "\r\n";
  };
  const std::pair<void (*)(Context&, double), double> ends[] = {{SetPaletteMin, 500},
                                                                {SetPaletteMax, -0.25},
                                                                {SetPaletteMin, 100},
                                                                {SetPaletteMax, 0}};  // equal ends are in order
  for (const auto& [set, value] : ends) {
    field.paletteMin = 0, field.paletteMax = 100;
    set(context, value);
    tell();
  }
  const std::tuple<Background, double, double> rotations[] = {{Background::vorticity, -15, 6},
                                                              {Background::vorticity, 1, 8},
                                                              {Background::swirl2, -2, 3},
                                                              {Background::swirl2, -3, 2},
                                                              {Background::none, 1, 2}};
  for (const auto& [background, left, right] : rotations) {
    SetRotations(left, right);
    SetBackground(context, background);
    field.paletteMin = 7, field.paletteMax = 8;
    FindOptimalPalette(context);
    tell();
  }
  ExpectApproved("palettes.txt", told);
}

}  // namespace
}  // namespace quiverion::test
