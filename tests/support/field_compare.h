#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <span>
#include <string>

#include "field/vector_field.h"

namespace quiverion::test {

/// True where both hold the same bits: NaN equals itself, and -0 is not 0.
inline bool SameBits(std::span<const double> a, std::span<const double> b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](double x, double y) {
    return std::bit_cast<std::uint64_t>(x) == std::bit_cast<std::uint64_t>(y);
  });
}

/// Names the first item of two fields that differs; empty where they are the same but for the path.
inline std::string FirstDifference(const VectorField& a, const VectorField& b) {
  std::string difference;
  const auto check = [&difference](bool same, const char* name) {
    if (!same && difference.empty()) difference = name;
  };
  const auto same = [](double x, double y) { return SameBits({&x, 1}, {&y, 1}); };
#define QUIVERION_CHECK(item) check(a.item == b.item, #item)
#define QUIVERION_CHECK_DOUBLE(item) check(same(a.item, b.item), #item)
#define QUIVERION_CHECK_DOUBLES(item) check(SameBits(a.item, b.item), #item)
  QUIVERION_CHECK(columnCount);
  QUIVERION_CHECK(rowCount);
  QUIVERION_CHECK_DOUBLES(posX);
  QUIVERION_CHECK_DOUBLES(posY);
  QUIVERION_CHECK_DOUBLES(velX.Values());
  QUIVERION_CHECK_DOUBLES(velY.Values());
  check(std::ranges::equal(a.status.Values(), b.status.Values()), "status");
  QUIVERION_CHECK_DOUBLES(derivedScalar.Values());
  QUIVERION_CHECK(headerLines);
  QUIVERION_CHECK(infoText);
  QUIVERION_CHECK(imageWidth);
  QUIVERION_CHECK(imageHeight);
  QUIVERION_CHECK(windowWidth);
  QUIVERION_CHECK(windowHeight);
  QUIVERION_CHECK(gridStepX);
  QUIVERION_CHECK(gridStepY);
  QUIVERION_CHECK(firstPixelX);
  QUIVERION_CHECK(firstPixelY);
  QUIVERION_CHECK(pixelScale);
  QUIVERION_CHECK(pulseDelay);
  QUIVERION_CHECK(validVectorCount);
  QUIVERION_CHECK_DOUBLE(offsetX);
  QUIVERION_CHECK_DOUBLE(offsetY);
  QUIVERION_CHECK(galileiPointSet);
  QUIVERION_CHECK_DOUBLE(galileiPointX);
  QUIVERION_CHECK_DOUBLE(galileiPointY);
  QUIVERION_CHECK_DOUBLE(galileiVelX);
  QUIVERION_CHECK_DOUBLE(galileiVelY);
  QUIVERION_CHECK(streamlineCount);
  QUIVERION_CHECK(streamlineSetting);
  for (std::size_t k = 0; k < a.streamlines.size(); ++k) QUIVERION_CHECK_DOUBLES(streamlines[k]);
  QUIVERION_CHECK(showHeader);
  QUIVERION_CHECK(showTable);
  QUIVERION_CHECK(showVectorField);
  QUIVERION_CHECK(showCoordSystem);
  QUIVERION_CHECK(aspectRatio1to1);
  QUIVERION_CHECK(background);
  QUIVERION_CHECK_DOUBLE(scaleFactor);
  QUIVERION_CHECK_DOUBLE(paletteMin);
  QUIVERION_CHECK_DOUBLE(paletteMax);
  QUIVERION_CHECK_DOUBLE(paletteSetting);
  QUIVERION_CHECK_DOUBLES(viewerSettings);
  QUIVERION_CHECK(colours);
#undef QUIVERION_CHECK
#undef QUIVERION_CHECK_DOUBLE
#undef QUIVERION_CHECK_DOUBLES
  return difference;
}

}  // namespace quiverion::test
