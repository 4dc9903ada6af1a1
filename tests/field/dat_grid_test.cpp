#include "field/dat_image.h"

namespace quiverion::test {
namespace {

using DatGrid = DatFile;

struct Placement {
  const char *image, *window, *step;
  int error;  // 0: loads; -1: window too wide, -2: too high
  std::int32_t firstX, firstY, columns, rows;
};

// clang-format off
constexpr Placement kPlacements[] = {
    {"2016x1616", "32x32", "16x16", 0, 16, 1600, 125, 100},
    {"64x48", "33x31", "7x5", 0, 21, 33, 4, 4},
    {"64x64", "32x40", "16x30", 0, 16, 34, 3, 1},
    {"64x64", "100x32", "16x16", -1, 0, 0, 0, 0},
    {"64x64", "32x100", "16x16", -2, 0, 0, 0, 0},
    {"64x64", "100x100", "16x16", -1, 0, 0, 0, 0},
    {"64x64", "1000x1000", "0x16", 11, 0, 0, 0, 0},
    {"64x64", "1000x1000", "16x0", 11, 0, 0, 0, 0},
    {"64x64", "1000x1000", "0.5x16", 11, 0, 0, 0, 0},
    {"64x64", "32x32", "-16x16", 6, 0, 0, 0, 0},  // falls for ever
    {"64x64", "32x32", "16x-16", 6, 0, 0, 0, 0},
    {"64x64", "-40x32", "-16x16", 9, 0, 0, 0, 0},
    {"16x64", "32x32", "16x16", 9, 0, 0, 0, 0},
    {"2147483647x2147483647", "2x2", "1x1", 7, 0, 0, 0, 0},
    {"2147483647x3", "2x2", "1x1", 7, 0, 0, 0, 0},
    {"20000x20000", "2x2", "1x1", 7, 0, 0, 0, 0},
    {"1025x1025", "2x2", "1x1", 0, 1, 1024, 1024, 1024},  // a sparse field of a million points
};
// clang-format on

TEST_F(DatGrid, IsPlacedInTheImageWithoutTakingMuchMemory) {
  const long before = PeakMemory();
  for (const Placement& p : kPlacements) {
    SCOPED_TRACE(std::string(p.image) + " " + p.window + " " + p.step);
    DatImage image;
    image.header[7] = std::string("Image:") + p.image;
    image.header[8] = std::string("Window:") + p.window;
    image.header[9] = std::string("Grid:") + p.step;
    if (p.columns == 1024) {
      EXPECT_LT(PeakMemory() - before, 50 * 1024);
    }
    const std::string refusal = p.error == -1 ? "breit" : "hoch";
    EXPECT_EQ(LoadDat(image), p.error == 0  ? Loaded("in.dat")
                              : p.error > 0 ? ReadFailed("in.dat", p.error)
                                            : LoadRefused("in.dat", "    Interrogation Window zu " + refusal + "!"));
    if (p.error != 0) continue;
    EXPECT_EQ(std::pair(field_.firstPixelX, field_.firstPixelY), std::pair(p.firstX, p.firstY));
    EXPECT_EQ(std::pair(field_.columnCount, field_.rowCount), std::pair(p.columns, p.rows));
  }
}

}  // namespace
}  // namespace quiverion::test
