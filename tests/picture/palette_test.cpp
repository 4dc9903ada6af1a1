#include "picture/palette.h"

#include <gtest/gtest.h>

#include <cmath>

namespace quiverion::test {
namespace {

struct Lab {
  double lightness, a, b;
};

double Linear(double part) {
  return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
}

// CIE 1976 L*a*b* under D65: another space than the one that the palettes are made in. Deuteranopia: the linear
// simulation of Machado, Oliveira and Fernandes (2009).
Lab LabOf(Colour colour, bool deuteranopia = false) {
  double r = Linear(colour.red / 255.0), g = Linear(colour.green / 255.0), b = Linear(colour.blue / 255.0);
  if (deuteranopia) {
    const double dr = 0.367322 * r + 0.860646 * g - 0.227968 * b, dg = 0.280085 * r + 0.672501 * g + 0.047413 * b,
                 db = -0.011820 * r + 0.042940 * g + 0.968881 * b;
    r = dr, g = dg, b = db;
  }
  const auto f = [](double t) { return t > 216.0 / 24389.0 ? std::cbrt(t) : (24389.0 / 27.0 * t + 16.0) / 116.0; };
  const double x = f((0.4124564 * r + 0.3575761 * g + 0.1804375 * b) / 0.95047);
  const double y = f(0.2126729 * r + 0.7151522 * g + 0.0721750 * b);
  const double z = f((0.0193339 * r + 0.1191920 * g + 0.9503041 * b) / 1.08883);
  return {116.0 * y - 16.0, 500.0 * (x - y), 200.0 * (y - z)};
}

double Difference(Lab p, Lab q) {
  return std::hypot(p.lightness - q.lightness, p.a - q.a, p.b - q.b);
}

TEST(Palette, StepsAreEvenAndLightnessTellsTheOrder) {
  for (const bool dark : {false, true}) {
    for (const PaletteKind kind : {PaletteKind::sequential, PaletteKind::diverging}) {
      const Palette& palette = PaletteOf(kind, dark);
      constexpr std::size_t kStep = 25;  // 8 bits of a channel are too coarse for single steps
      double least = 1e9, greatest = 0.0;
      for (std::size_t k = kStep; k < palette.size(); k += kStep) {
        const double difference = Difference(LabOf(palette[k]), LabOf(palette[k - kStep]));
        least = std::min(least, difference);
        greatest = std::max(greatest, difference);
        for (const bool blind : {false, true}) {
          const double change = LabOf(palette[k], blind).lightness - LabOf(palette[k - kStep], blind).lightness;
          const bool firstArm = kind == PaletteKind::diverging && k <= palette.size() / 2;
          EXPECT_GT(dark != firstArm ? change : -change, 1.0) << k << dark << blind;
        }
      }
      EXPECT_LT(greatest / least, 2.0) << dark << ": not the same space, so not exactly";
    }
    const Palette& diverging = PaletteOf(PaletteKind::diverging, dark);
    EXPECT_GT(Difference(LabOf(diverging.front(), true), LabOf(diverging.back(), true)), 40.0) << "the signs";
  }
}

TEST(Palette, ValuesHaveTheirPlace) {
  struct Case {
    Limits limits;
    double value;
    std::size_t index;
  };
  constexpr std::size_t kLast = kPaletteSize - 1, kMiddle = kLast / 2;
  const Case cases[] = {{{0, 10}, 0, 0},
                        {{0, 10}, 10, kLast},
                        {{0, 10}, 5, kMiddle},
                        {{0, 10}, -1, 0},
                        {{0, 10}, 1e30, kLast},
                        {{-2, 2}, 0, kMiddle},
                        {{-2, 8}, 0, kMiddle},
                        {{-2, 8}, 8, kLast},
                        {{-8, 2}, 2, kMiddle + kMiddle / 4 + 1},
                        {{-2, 8}, -2, kMiddle - kMiddle / 4},
                        {{-2, 8}, -8, kMiddle - kMiddle / 4},
                        {{-8, 2}, 1e30, kMiddle + kMiddle / 4},
                        {{-5, -1}, -5, 0},
                        {{-5, -1}, -1, kLast},
                        {{-1e308, 1e308}, 0, kMiddle},
                        {{-1e308, 1e308}, 1e308, kLast},
                        {{1, 1 + 1e-15}, 1, 0}};
  for (const Limits& around : {Limits{-2, 2}, {-2, 8}, {-8, 1e-3}, {-1e308, 1}}) {
    EXPECT_EQ(PaletteScale(around).IndexOf(0.0), kMiddle) << around.lower;
  }
  for (const Case& each : cases) {
    EXPECT_NEAR(static_cast<double>(PaletteScale(each.limits).IndexOf(each.value)), static_cast<double>(each.index),
                1.0)
        << each.limits.lower << " " << each.limits.upper << " " << each.value;
  }
}

}  // namespace
}  // namespace quiverion::test
