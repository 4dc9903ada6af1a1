#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <ranges>
#include <span>
#include <string>

#include "field/vector_field.h"

namespace quiverion::test {

/// True if both have the same bits: NaN equals itself, and -0 is not 0.
inline bool SameBits(std::span<const double> a, std::span<const double> b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](double x, double y) {
    return std::bit_cast<std::uint64_t>(x) == std::bit_cast<std::uint64_t>(y);
  });
}

template <class Value>
bool SameItem(const Value& a, const Value& b) {
  if constexpr (std::is_same_v<Value, double>) {
    return SameBits({&a, 1}, {&b, 1});
  } else if constexpr (requires { a.Values(); }) {
    return std::ranges::equal(a.Values(), b.Values(), [](auto x, auto y) { return SameItem(x, y); });
  } else if constexpr (std::ranges::range<Value>) {
    return std::ranges::equal(a, b, [](const auto& x, const auto& y) { return SameItem(x, y); });
  } else {
    return a == b;
  }
}

/// Names the items in which two fields differ; empty if they are the same except for the path.
inline std::string FirstDifference(const VectorField& a, const VectorField& b) {
  using F = VectorField;
  std::string different;
  const auto check = [&](const char* group, auto... members) {
    int item = 0;
    ((++item, SameItem(a.*members, b.*members) || !(different += group + std::to_string(item) + " ").empty()), ...);
  };
  check("grid ", &F::columnCount, &F::rowCount, &F::posX, &F::posY, &F::velX, &F::velY, &F::status, &F::derivedScalar);
  check("text ", &F::headerLines, &F::infoText);
  check("image ", &F::imageWidth, &F::imageHeight, &F::windowWidth, &F::windowHeight, &F::gridStepX, &F::gridStepY,
        &F::firstPixelX, &F::firstPixelY, &F::pixelScale, &F::pulseDelay, &F::validVectorCount);
  check("frame ", &F::offsetX, &F::offsetY, &F::galileiPointSet, &F::galileiPointX, &F::galileiPointY, &F::galileiVelX,
        &F::galileiVelY, &F::streamlineCount, &F::streamlineSetting, &F::streamlines);
  check("view ", &F::showHeader, &F::showTable, &F::showVectorField, &F::showCoordSystem, &F::aspectRatio1to1,
        &F::background, &F::scaleFactor, &F::paletteMin, &F::paletteMax, &F::paletteSetting, &F::viewerSettings,
        &F::colours);
  return different;
}

}  // namespace quiverion::test
