// From a field to what is drawn of it.
#include "picture/compose.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "picture/readout.h"
#include "picture/svg.h"
#include "picture/wishes.h"
#include "support/approved.h"
#include "support/field_builder.h"
#include "support/picture_check.h"

namespace quiverion::test {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

TEST(Quantities, ValuesOfKnownFlows) {
  VectorField field = MakeField(5, 4);
  SetVelocities(
      field, [](double, double y) { return -0.002 * y; }, [](double x, double) { return 0.002 * x; });
  EXPECT_NEAR(ValuesOf(field, Quantity::vorticity)(3, 2), 4.0, 1e-9);
  EXPECT_NEAR(ValuesOf(field, Quantity::swirl2)(3, 2), 4.0, 1e-9);
  EXPECT_NEAR(ValuesOf(field, Quantity::divergence)(3, 2), 0.0, 1e-9);
  EXPECT_NEAR(ValuesOf(field, Quantity::speed)(3, 4), 0.01, 1e-12);
  SetVelocities(
      field, [](double x, double) { return 0.003 * x; }, [](double, double y) { return 0.002 * y; });
  EXPECT_NEAR(ValuesOf(field, Quantity::divergence)(1, 1), 5.0, 1e-9);
  EXPECT_EQ(&ValuesOf(field, Quantity::v), &field.velY);
  // What would end a command is only missing here.
  field.velX(2, 2) = 1e308, field.velX(4, 2) = -1e308;
  const Grid<double>& values = ValuesOf(field, Quantity::divergence);
  EXPECT_FALSE(std::isfinite(values(3, 2)));
  EXPECT_NEAR(values(5, 4), 5.0, 1e-9) << "after the error";
  field.posX[1] = field.posX[0];
  EXPECT_FALSE(std::isfinite(ValuesOf(field, Quantity::vorticity)(1, 1)));
  EXPECT_DOUBLE_EQ(SpeedOf(3e200, 4e200), 5e200);
  EXPECT_DOUBLE_EQ(SpeedOf(3e-200, 4e-200), 5e-200);
}

TEST(Quantities, ResultsOfStatisticsHaveTheirWords) {
  const char* const means = "Mittelwerte erzeugt aus der Kollektion: S.col";
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"SAvg.VAS", means, "Mittelwert|<u> [m/s]"},
      {"S_RMS.vas", means, "Standardabweichung|s(u) [m/s]"},
      {"SUsAndVs.vas", means, "Mittlere Schwankungsquadrate|<u'²> [m²/s²]"},
      {"SUsTimesVs.vas", means, "Mittleres Schwankungsprodukt|<u'v'> [m²/s²]"},
      {"STU.vas", means, "Turbulenzgrad und -produktion|Tu"},
      {"egal.vas", "Energiedissipationsrate erzeugt aus der Kollektion: S.col", "Energiedissipationsrate|D [m²/s³]"},
      {"anders.vas", means, "Ergebnis einer Statistik|u"},
      {"SAVG.vas", "", "|u [m/s]"}};
  for (const auto& [name, info, expected] : cases) {
    VectorField field = MakeField(2, 2);
    field.fileName = name;
    field.infoText = info;
    const ComponentTexts components = ComponentsOf(field);
    EXPECT_EQ(std::string(components.title) + "|" + SymbolOf(field, Quantity::u), expected) << name;
  }
}

TEST(Statuses, WhatTheyMeanDependsOnTheirOrigin) {
  VectorField field = MakeField(1, 1);
  const std::pair<std::int32_t, const char*> own[] = {{1, "gültig"},     {2, "kombiniert oder gefiltert"},
                                                      {3, "aufgefüllt"}, {4, "4. Korrelationspeak"},
                                                      {0, "ungültig"},   {-1, "maskiert"},
                                                      {-7, "maskiert"},  {99, "gültig"}};
  for (const auto& [status, name] : own) EXPECT_EQ(NameOf(KindOf(status), OriginOf(field)), name) << status;
  field.fileName = "a.Vec";
  EXPECT_EQ(NameOf(KindOf(2), OriginOf(field)), "2. Korrelationspeak");
  EXPECT_EQ(NameOf(KindOf(3), OriginOf(field, true)), "aufgefüllt oder 3. Korrelationspeak");
  field.fileName = "a.vas";
  field.headerLines[1] = "No information (DaVis)";
  EXPECT_EQ(NameOf(KindOf(2), OriginOf(field)), "gefiltert oder 2. Korrelationspeak");
}

TEST(Choices, ObeyTheViewSettingsUnlessSomebodyChoosesOtherwise) {
  VectorField field = MakeField(3, 3);
  PictureChoices plain = ChoicesOf(field);
  EXPECT_TRUE(plain.arrows && plain.equalScales && !plain.header && !plain.coordinateSystem && !plain.limits);
  EXPECT_EQ(plain.quantity, Quantity::none);
  field.showHeader = true, field.showVectorField = false, field.showCoordSystem = 1, field.scaleFactor = 2.5;
  field.background = Background::swirl2, field.paletteMin = -5, field.paletteMax = 7, field.aspectRatio1to1 = -1;
  PictureChoices preset;
  preset.equalScales = false;
  const PictureChoices obeyed = ChoicesOf(field, preset);
  EXPECT_TRUE(obeyed.header && !obeyed.arrows && obeyed.coordinateSystem && obeyed.equalScales);
  EXPECT_EQ(obeyed.factor, 2.5);
  EXPECT_EQ(obeyed.quantity, Quantity::swirl2);
  EXPECT_EQ(obeyed.limits, (Limits{-5, 7}));

  const FieldSummary summary = Summarise(field);
  const HeldScale held{Quantity::u, std::nullopt, 9.0, {-3, 3}};
  ViewWishes wishes{.factor = 2.0, .header = false};
  EXPECT_EQ(ChoicesFor(field, summary, wishes, held).limits, (Limits{-5, 7})) << "the file's own background";
  EXPECT_EQ(ChoicesFor(field, summary, wishes, held).factor, 5.0);
  EXPECT_FALSE(ChoicesFor(field, summary, wishes, held).header);
  wishes.quantity = Quantity::u;
  EXPECT_EQ(ChoicesFor(field, summary, wishes, held).limits, (Limits{-3, 3})) << "held";
  EXPECT_EQ(ChoicesFor(field, summary, wishes, held).reference, 9.0);
  wishes.quantity = Quantity::v;
  EXPECT_FALSE(ChoicesFor(field, summary, wishes, held).limits) << "held for another quantity";
  wishes.limits = Limits{1, 2};
  EXPECT_EQ(ChoicesFor(field, summary, wishes, held).limits, (Limits{1, 2})) << "typed";
  wishes.subtracted = Subtracted::mean;
  EXPECT_FALSE(ChoicesFor(field, summary, wishes, held).reference) << "of other velocities";
  wishes = {.quantity = Quantity::u, .holdScale = false};
  EXPECT_FALSE(ChoicesFor(field, summary, wishes, held).reference);
  field.infoText = "Mittelwerte erzeugt aus der Kollektion: x", field.fileName = "TU.vas";
  wishes.holdScale = true;
  EXPECT_FALSE(ChoicesFor(field, summary, wishes, held).reference) << "a result has another scale";
}

// The colours of kinds in the cells, and marks in the shapes of the plot.
struct Seen {
  std::int64_t cells = 0;
  std::size_t marks = 0;
};
Seen SeenOf(const Picture& picture, Colour colour) {
  Seen seen;
  for (const std::uint8_t index : picture.cells.indices) {
    seen.cells += index != Cells::kNoCell && picture.cells.colours[index] == colour;
  }
  for (const Shapes& shapes : picture.shapes) {
    if (shapes.inPlot && shapes.colour == colour) seen.marks += shapes.lines.size() + shapes.areas.size();
  }
  return seen;
}

TEST(Compose, RejectedAndFilledVectorsNeverVanish) {
  for (const int size : {10, 60, 200, 900}) {
    VectorField field = MakeField(size, size);
    field.status(2, 3) = 0;
    field.status(size - 1, size - 2) = 3;
    for (const Quantity quantity : {Quantity::none, Quantity::speed}) {
      PictureChoices choices{.width = 400.0, .height = 300.0, .quantity = quantity};
      for (const StatusKind kind : {StatusKind::rejected, StatusKind::third}) {
        const Seen seen = SeenOf(Compose(field, choices).picture, ColourOf(kind, false));
        EXPECT_GE(seen.cells + static_cast<std::int64_t>(seen.marks), 1) << size;
        choices.hidden[static_cast<std::size_t>(kind)] = true;
        const Seen hidden = SeenOf(Compose(field, choices).picture, ColourOf(kind, false));
        EXPECT_EQ(hidden.cells + static_cast<std::int64_t>(hidden.marks), 0) << size;
        choices.hidden = {};
      }
    }
  }
}

// A fine grid of mostly filled vectors shows its background, too.
TEST(Compose, TheCommonKindIsNotMarked) {
  for (const int size : {20, 200}) {
    VectorField field = MakeField(size, size);
    std::ranges::fill(field.status.Values(), 3);
    field.status(3, 3) = 0;
    const Picture picture = Compose(field, {.width = 400.0, .height = 300.0, .quantity = Quantity::speed}).picture;
    const Seen filled = SeenOf(picture, ColourOf(StatusKind::third, false));
    EXPECT_EQ(filled.cells + static_cast<std::int64_t>(filled.marks), 0) << size;
    const Seen rejected = SeenOf(picture, ColourOf(StatusKind::rejected, false));
    EXPECT_GE(rejected.cells + static_cast<std::int64_t>(rejected.marks), 1) << size;
  }
}

TEST(Compose, HolesAreNoValues) {
  VectorField field = MakeField(6, 5);
  field.velX(4, 4) = kNan;
  field.status(2, 2) = 0;
  field.status(3, 3) = -1;
  const Picture picture = Compose(field, {.quantity = Quantity::u}).picture;
  const Colour missing{190, 190, 190};
  EXPECT_EQ(SeenOf(picture, missing).cells, 3);
  // y ascends upwards, so row 5 of the grid is on top.
  const std::uint8_t rejected = picture.cells.indices[3 * 6 + 1];
  EXPECT_EQ(picture.cells.colours[rejected], missing);
}

TEST(Compose, OneBrokenFieldDoesNotMakeTheScaleOfASeries) {
  SeriesScale scale(Quantity::u);
  for (int k = 0; k < 20; ++k) {
    VectorField field = MakeField(20, 20);
    SetVelocities(
        field, [&](double x, double) { return k == 7 ? 1e30 : x; }, [](double, double) { return 0.0; });
    scale.Add(field);
  }
  EXPECT_LE(scale.Reference(), 20.0);
  EXPECT_EQ(scale.BarLimits(), (Limits{-20.0, 20.0}));
  SeriesScale speeds(Quantity::none, 500);
  VectorField large = MakeField(1000, 30);
  SetVelocities(
      large, [](double x, double) { return x; }, [](double, double) { return 0.0; });
  speeds.Add(large);
  EXPECT_NEAR(speeds.Reference(), 950.0, 60.0) << "all columns count";
}

// Whatever is in a file: only finite coordinates, and never more than the picture can show.
TEST(Compose, HostileFieldsGiveSoundPictures) {
  const auto change = [](VectorField field, auto action) {
    action(field);
    return field;
  };
  const double infinity = std::numeric_limits<double>::infinity(), huge = 1.7e308;
  std::vector<VectorField> fields = {MakeField(1, 1), MakeField(1, 40), MakeField(40, 1), MakeField(300, 200)};
  for (const std::int32_t status : {0, -1, 3, 2}) {
    fields.push_back(change(MakeField(30, 20), [&](VectorField& f) { std::ranges::fill(f.status.Values(), status); }));
  }
  for (const double value : {kNan, infinity, -infinity, huge, 1e30, 5e-324}) {
    fields.push_back(change(MakeField(12, 9), [&](VectorField& f) { f.velX(3, 3) = f.velY(5, 5) = value; }));
    fields.push_back(change(MakeField(12, 9), [&](VectorField& f) { std::ranges::fill(f.velX.Values(), value); }));
    fields.push_back(change(MakeField(12, 9), [&](VectorField& f) { f.posX[2] = f.posY[8] = value; }));
    fields.push_back(change(MakeField(12, 9), [&](VectorField& f) { std::ranges::fill(f.posX, value); }));
  }
  fields.push_back(change(MakeField(50, 50), [](VectorField& f) {
    for (std::size_t k = 0; k < f.posX.size(); ++k)
      f.posX[k] = k < 40 ? static_cast<double>(k) * 1e-9 : 1e5 * static_cast<double>(k * k % 7);
    std::ranges::reverse(f.posY);
  }));
  fields.push_back(change(MakeField(3, 3), [](VectorField& f) {
    f.headerLines.fill(std::string(4000, 'W') + "\xFF\x01<&\"");
    f.fileName = f.headerLines[0];
    f.showHeader = true;
  }));
  for (VectorField& field : fields) {
    for (const auto& [width, height] : {std::pair(1.0, 1.0), {30.0, 500.0}, {640.0, 480.0}, {4000.0, 3000.0}}) {
      if (width > 1000.0 && field.columnCount < 100) continue;
      for (const QuantityTexts& texts : AllQuantities()) {
        PictureChoices choices = ChoicesOf(field);
        choices.width = width, choices.height = height, choices.quantity = texts.quantity;
        choices.coordinateSystem = true, choices.subtractU = 1e-3;
        const Composition whole = Compose(field, choices);
        ASSERT_EQ(WrongInPicture(whole.picture), "") << width << " " << texts.name << " " << field.columnCount;
        choices.view = Extent{1e6, 1e6 + 1e-3, -5.0, 5.0};
        choices.limits = Limits{-1e308, 1e308};
        ASSERT_EQ(WrongInPicture(Compose(field, choices).picture), "");
      }
    }
    const FieldSummary summary = Summarise(field);
    for (const Point end : {Point{1e9, 3.0}, {12.0, 2.0}, {1e-300, 1e-300}}) {
      const auto profile = ProfileAlong(field, summary, {-end.x, 1.0}, end);
      ASSERT_EQ(WrongInPicture(ProfilePicture(field, profile, {})), "") << field.columnCount << " " << end.x;
    }
    ReadoutText(field, {1, 1});
  }
}

TEST(Readout, TheVectorUnderTheMouse) {
  VectorField field = MakeField(8, 6);
  SetVelocities(
      field, [](double x, double) { return x; }, [](double, double y) { return -y; });
  field.status(3, 2) = 0;
  const Composition composition = Compose(field, {});
  const FieldSummary summary = Summarise(field);
  const auto under = [&](double x, double y) {
    return PointUnder(summary, composition.map, {composition.map.ToPictureX(x), composition.map.ToPictureY(y)});
  };
  EXPECT_EQ(under(3.4, 1.6), (GridPoint{3, 2}));
  EXPECT_EQ(under(0.51, 6.49), (GridPoint{1, 6}));
  EXPECT_EQ(PointUnder(summary, composition.map, {1.0, 1.0}), std::nullopt) << "beside the plot";
  EXPECT_EQ(ReadoutText(field, {3, 2}),
            "i 3  j 2  x 3  y 2 mm  u 3  v -2 m/s  |v| 3,6056 m/s  Winkel -33,69 °  ω 0 1/s  λ² 0 1/s²  ungültig (0)");
  EXPECT_EQ(DifferenceText(field, {1, 1}, {4, 5}),
            "Abstand 5 mm  Richtung 53,13 °  Δx 3 mm  Δy 4 mm  Δu 3 m/s  Δv -4 m/s  Betrag der Differenz 5 m/s");
  const auto profile = ProfileAlong(field, summary, {1.0, 3.0}, {8.0, 3.0});
  ASSERT_EQ(profile.size(), 8u) << "each vector once";
  EXPECT_EQ(profile[2].point, (GridPoint{3, 3}));
  EXPECT_EQ(profile[2].distance, 2.0);
  EXPECT_EQ(ProfileAlong(field, summary, {8.0, 3.0}, {1.0, 3.0})[2].point, (GridPoint{6, 3}));
  EXPECT_TRUE(ProfileAlong(field, summary, {1.0, 1.0}, {1.0, 1.0}).empty());
}

VectorField SmallField() {
  VectorField field = MakeField(6, 4);
  SetVelocities(
      field, [](double, double y) { return 0.5 * y - 1.25; }, [](double x, double) { return 0.3 * x - 1.0; });
  field.fileName = "klein <&>.vas";
  field.headerLines[0] = "24.11.26 10:15:00";
  field.headerLines[3] = "Düse 3";
  return field;
}

// The text of an SVG file is the picture.
TEST(Svg, FourPictures) {
  const PictureChoices small{.width = 360.0, .height = 260.0, .textSize = 10.0};
  VectorField field = SmallField();
  ExpectApproved("picture_plain.svg", SvgOf(Compose(field, ChoicesOf(field, small)).picture));

  field.background = Background::vorticity, field.paletteMin = -100, field.paletteMax = 800;
  field.showHeader = true, field.showCoordSystem = -1, field.velX(4, 2) = 3.0;
  for (double& x : field.posX) x -= 3.0;
  ExpectApproved("picture_vorticity.svg", SvgOf(Compose(field, ChoicesOf(field, small)).picture));

  field = SmallField();
  const std::int32_t statuses[] = {1, 1, 1, 2, 3, 4, 0, -1};
  for (std::size_t k = 0; k < 24; ++k) field.status.Values()[k] = statuses[k % 8];
  PictureChoices dark = small;
  dark.darkPaper = true;
  ExpectApproved("picture_statuses.svg", SvgOf(Compose(field, dark).picture));

  field = SmallField();
  field.fileName = "SDISS.vas";
  field.infoText = "Energiedissipationsrate erzeugt aus der Kollektion: S.col";
  ExpectApproved("picture_result.svg", SvgOf(Compose(field, ChoicesOf(field, small)).picture));
}

}  // namespace
}  // namespace quiverion::test
