#include <random>

#include "field/dat_image.h"

namespace quiverion::test {
namespace {

using DatGrid = DatFile;

const std::string kTooWide = "    Interrogation Window zu breit!";
const std::string kTooHigh = "    Interrogation Window zu hoch!";

struct Placement {
  std::int32_t imageWidth, imageHeight, windowWidth, windowHeight, stepX, stepY;
};

std::string Times(std::int32_t a, std::int32_t b) {
  return std::to_string(a) + "x" + std::to_string(b);
}

// How loading ends and what grid it gives, step by step as the placement is defined.
struct PlacedGrid {
  std::string refusal;
  int number = 0;
  std::int64_t firstX = 0, firstY = 0, columns = 0, rows = 0;
};

PlacedGrid PlaceStepByStep(const Placement& p) {
  PlacedGrid grid;
  const std::int64_t halfW = p.windowWidth / 2;
  const std::int64_t halfH = p.windowHeight / 2;
  if (p.stepX == 0 || p.stepY == 0) return {"", 11};
  for (grid.firstX = p.stepX; grid.firstX < halfW;) {
    grid.firstX += p.stepX;
    if (grid.firstX > p.imageWidth - halfW) return {kTooWide};
    if (p.stepX < 0) return {"", 6};  // falls for ever
  }
  for (grid.firstY = p.imageHeight - p.stepY; p.imageHeight - grid.firstY < halfH;) {
    grid.firstY -= p.stepY;
    if (grid.firstY < halfH) return {kTooHigh};
    if (p.stepY < 0) return {"", 6};
  }
  grid.columns = (p.imageWidth - grid.firstX - halfW) / p.stepX + 1;
  grid.rows = (grid.firstY - halfH) / p.stepY + 1;
  if (grid.columns < 1 || grid.rows < 1) grid.number = 9;
  return grid;
}

TEST_F(DatGrid, PlacesTheGridAsDefined) {
  const auto check = [&](const Placement& p) {
    DatImage image;
    image.header[7] = "Image:" + Times(p.imageWidth, p.imageHeight);
    image.header[8] = "Window:" + Times(p.windowWidth, p.windowHeight);
    image.header[9] = "Grid:" + Times(p.stepX, p.stepY);
    const PlacedGrid expected = PlaceStepByStep(p);
    const std::string log = LoadDat(image);
    const std::string where = image.header[7] + " " + image.header[8] + " " + image.header[9];
    if (!expected.refusal.empty()) {
      ASSERT_EQ(log, LoadRefused("in.dat", expected.refusal)) << where;
    } else if (expected.number != 0) {
      ASSERT_EQ(log, ReadFailed("in.dat", expected.number)) << where;
    } else {
      ASSERT_EQ(log, Loaded("in.dat")) << where;
      ASSERT_EQ(field_.firstPixelX, expected.firstX) << where;
      ASSERT_EQ(field_.firstPixelY, expected.firstY) << where;
      ASSERT_EQ(field_.columnCount, expected.columns) << where;
      ASSERT_EQ(field_.rowCount, expected.rows) << where;
    }
  };
  check({2016, 1616, 32, 32, 16, 16});
  check({64, 48, 33, 31, 7, 5});
  std::mt19937_64 random(3);
  const auto draw = [&](std::int32_t low, std::int32_t high) {
    return low + static_cast<std::int32_t>(random() % static_cast<std::uint64_t>(high - low + 1));
  };
  for (int turn = 0; turn < 4000; ++turn) {
    const bool odd = turn % 4 == 0;  // signs and sizes that no camera has
    check({draw(odd ? -50 : 1, 200), draw(odd ? -50 : 1, 200), draw(odd ? -90 : 0, 120), draw(odd ? -90 : 0, 120),
           draw(odd ? -20 : 1, 40), draw(odd ? -20 : 1, 40)});
    if (HasFatalFailure()) return;
  }
}

TEST_F(DatGrid, RefusesAWindowThatTheImageDoesNotHold) {
  const std::pair<Placement, std::string> cases[] = {{{64, 64, 100, 32, 16, 16}, kTooWide},
                                                     {{64, 64, 32, 100, 16, 16}, kTooHigh},
                                                     {{64, 64, 100, 100, 16, 16}, kTooWide}};
  for (const auto& [p, refusal] : cases) {
    DatImage image;
    image.header[8] = "Window: " + Times(p.windowWidth, p.windowHeight);
    EXPECT_EQ(LoadDat(image), LoadRefused("in.dat", refusal));
  }
  for (const char* const steps : {"0x16", "16x0", "0.5x16"}) {
    DatImage image;
    image.header[8] = "Window: 1000x1000";
    image.header[9] = std::string("Grid: ") + steps;
    EXPECT_EQ(LoadDat(image), ReadFailed("in.dat", 11));
  }
}

TEST_F(DatGrid, AHeaderAloneDoesNotTakeMuchMemory) {
  const auto load = [&](std::int32_t width, std::int32_t height) {
    DatImage image;
    image.header[7] = "Image: " + Times(width, height);
    image.header[8] = "Window: 2x2";
    image.header[9] = "Grid: 1x1";
    return LoadDat(image);
  };
  const long before = PeakMemory();
  EXPECT_EQ(load(2147483647, 2147483647), ReadFailed("in.dat", 7));
  EXPECT_EQ(load(2147483647, 3), ReadFailed("in.dat", 7));
  EXPECT_EQ(load(20000, 20000), ReadFailed("in.dat", 7));
  EXPECT_LT(PeakMemory() - before, 50 * 1024);
  EXPECT_EQ(load(1025, 1025), Loaded("in.dat")) << "a sparse field of a million points";
  EXPECT_EQ(field_.columnCount, 1024);
}

}  // namespace
}  // namespace quiverion::test
