#include "picture/palette.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

namespace quiverion {
namespace {

struct Oklab {
  double lightness = 0.0, a = 0.0, b = 0.0;
};

Oklab FromPolar(double lightness, double chroma, double hueDegrees) {
  const double hue = hueDegrees * std::numbers::pi / 180.0;
  return {lightness, chroma * std::cos(hue), chroma * std::sin(hue)};
}

double Distance(const Oklab& p, const Oklab& q) {
  return std::hypot(p.lightness - q.lightness, p.a - q.a, p.b - q.b);
}

std::uint8_t ToByte(double linear) {
  const double bounded = std::clamp(linear, 0.0, 1.0);
  const double value = bounded <= 0.0031308 ? 12.92 * bounded : 1.055 * std::pow(bounded, 1.0 / 2.4) - 0.055;
  return static_cast<std::uint8_t>(std::lround(255.0 * value));
}

// B. Ottosson, "A perceptual color space for image processing", 2020; sRGB transfer curve of IEC 61966-2-1.
Colour ToColour(const Oklab& lab) {
  const auto cube = [](double value) { return value * value * value; };
  const double l = cube(lab.lightness + 0.3963377774 * lab.a + 0.2158037573 * lab.b);
  const double m = cube(lab.lightness - 0.1055613458 * lab.a - 0.0638541728 * lab.b);
  const double s = cube(lab.lightness - 0.0894841775 * lab.a - 1.2914855480 * lab.b);
  return {ToByte(4.0767416621 * l - 3.3077115913 * m + 0.2309699292 * s),
          ToByte(-1.2684380046 * l + 2.6097574011 * m - 0.3413193965 * s),
          ToByte(-0.0041960863 * l - 0.7034186147 * m + 1.7076147010 * s)};
}

// `count` points of a path at equal distances along it; `at` gives its point for 0 to 1.
template <class Path>
std::vector<Oklab> EqualSteps(std::size_t count, Path at) {
  constexpr int kParts = 4000;
  std::vector<double> length{0.0};
  for (int k = 1; k <= kParts; ++k) {
    length.push_back(length.back() + Distance(at((k - 1.0) / kParts), at(static_cast<double>(k) / kParts)));
  }
  std::vector<Oklab> points;
  for (std::size_t n = 0; n < count; ++n) {
    const double wanted = length.back() * static_cast<double>(n) / static_cast<double>(count - 1);
    const auto next = std::ranges::lower_bound(length, wanted);
    points.push_back(at(static_cast<double>(next - length.begin()) / kParts));
  }
  return points;
}

// From nearly the paper's colour to the strongest one.
double LightnessAt(double part, bool darkPaper) {
  return darkPaper ? 0.25 + 0.37 * part : 0.97 - 0.42 * part;
}

Palette Sequential(bool dark) {
  const auto path = [dark](double t) { return FromPolar(LightnessAt(t, dark), 0.02 + 0.10 * t, 110.0 + 140.0 * t); };
  Palette palette;
  std::ranges::transform(EqualSteps(kPaletteSize, path), palette.begin(), ToColour);
  return palette;
}

Palette Diverging(bool dark) {
  constexpr std::size_t kMiddle = kPaletteSize / 2;
  const auto arm = [dark](double hue) {
    return EqualSteps(kMiddle + 1, [=](double t) { return FromPolar(LightnessAt(t, dark), 0.12 * t, hue); });
  };
  const std::vector<Oklab> blue = arm(250.0), orange = arm(50.0);
  Palette palette;
  for (std::size_t n = 0; n <= kMiddle; ++n) {
    palette[kMiddle - n] = ToColour(blue[n]);
    palette[kMiddle + n] = ToColour(orange[n]);
  }
  return palette;
}

}  // namespace

const Palette& PaletteOf(PaletteKind kind, bool darkPaper) {
  static const std::array<Palette, 4> palettes = {Sequential(false), Sequential(true), Diverging(false),
                                                  Diverging(true)};
  return palettes[(kind == PaletteKind::diverging ? 2u : 0u) + (darkPaper ? 1u : 0u)];
}

PaletteKind KindFor(const Limits& limits) {
  return limits.lower < 0.0 && limits.upper > 0.0 ? PaletteKind::diverging : PaletteKind::sequential;
}

PaletteScale::PaletteScale(const Limits& limits) : limits_(limits) {
  const bool diverging = KindFor(limits) == PaletteKind::diverging;
  const double side = std::max(-limits.lower, limits.upper);
  const double lower = diverging ? -side : limits.lower;
  const double half = diverging ? side : limits.upper / 2.0 - limits.lower / 2.0;  // the whole may be no double
  factor_ = static_cast<double>(kPaletteSize - 1) / 2.0 / std::max(half, 1E-300);
  zero_ = lower;
}

std::size_t PaletteScale::IndexOf(double value) const {
  const double shown = std::clamp(value, limits_.lower, limits_.upper);
  const double index = shown * factor_ - zero_ * factor_ + 0.5;
  return static_cast<std::size_t>(std::clamp(index, 0.0, static_cast<double>(kPaletteSize - 1)));
}

}  // namespace quiverion
