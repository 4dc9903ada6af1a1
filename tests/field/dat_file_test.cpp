#include "field/dat_file.h"

#include <random>
#include <tuple>

#include "field/dat_image.h"
#include "support/dat_lines_check.h"

namespace quiverion::test {
namespace {

const std::string kNotKorvo = "    Ungültiges Dateiformat: Nicht von Korvo!";

TEST_F(DatFile, ReadsHeaderGridAndVectors) {
  EXPECT_EQ(LoadLines("32.0 48.0 0 0 0 0 1.5 -0.25\r\n"), Loaded("in.dat"));
  const std::array<std::string, 7> header = {"24.11.03 10:15:02",   "duese_2.tif", "Freistrahl", "",
                                             "Düse, Querschnitt 1", "Nd:YAG",      "x"};
  EXPECT_EQ(field_.headerLines, header);
  EXPECT_EQ(std::pair(field_.pixelScale, field_.pulseDelay), std::pair(77, 50));
  EXPECT_EQ(field_.validVectorCount, 77) << "as the file states it";
  EXPECT_TRUE(SameBits(field_.posX, std::vector<double>{16.0 / 77 * 10, 32.0 / 77 * 10, 48.0 / 77 * 10}));
  EXPECT_TRUE(SameBits(field_.posY, std::vector<double>{48.0 / 77 * 10, 32.0 / 77 * 10, 16.0 / 77 * 10}));
  EXPECT_EQ(field_.velX(2, 1), 1.5);
  EXPECT_EQ(field_.velY(2, 1), -0.25);
  EXPECT_EQ(field_.status(2, 1), 1);
  EXPECT_EQ(FilledPoints(), 1);
}

TEST_F(DatFile, PutsEachLineAtItsGridPoint) {
  struct Case {
    std::string line;
    std::int32_t column, row;
    double u, v;
  };
  const Case cases[] = {{"16 48 0 0 0 0 1 2", 1, 1, 1, 2},
                        {"48 16 0 0 0 0 1 2 9 9 9", 3, 3, 1, 2},
                        {"30.5 32.5 0 0 0 0 1 2", 1, 2, 1, 2},  // 14.5 is 14, 32.5 is 32
                        {"0.6 63.4 0 0 0 0 1 2", 1, 1, 1, 2},   // less than a step outside belongs to the edge
                        {"3.2E1 4.8e+1 0 0 0 0 15e-1 -25E-2", 2, 1, 1.5, -0.25},
                        {"+32 48. 0 0 0 0 +.5 -.5", 2, 1, 0.5, -0.5},
                        {"32px 48px 0 0 0 0 1.5m/s x", 2, 1, 1.5, 0},
                        {"32 48", 2, 1, 0, 0},
                        {"32\t1 48 0 0 0 0 1\t5 2", 2, 1, 1, 2},  // a tab belongs to its column
                        {"32 48 1e999 x 0 0 -0 -0.0", 2, 1, -0.0, -0.0},
                        {"32 48 0 0 0 0 nan inf", 2, 1, 0, 0},
                        {"\"32 48 a,b 0 0 0 1 2\"", 2, 1, 1, 2},
                        {"  \"32 48 0 0 0 0 1 2\"  ", 2, 1, 1, 2}};
  for (const Case& c : cases) {
    for (const char* const lineEnd : {"\r\n", "\n", "\r", ""}) {
      ASSERT_EQ(LoadLines(c.line + lineEnd), Loaded("in.dat")) << c.line;
      EXPECT_EQ(field_.status(c.column, c.row), 1) << c.line;
      EXPECT_TRUE(SameBits({&field_.velX(c.column, c.row), 1}, {&c.u, 1})) << c.line;
      EXPECT_TRUE(SameBits({&field_.velY(c.column, c.row), 1}, {&c.v, 1})) << c.line;
      EXPECT_EQ(FilledPoints(), 1) << c.line;
    }
  }
}

TEST_F(DatFile, RefusesLinesOutsideTheGridAndNumbersTooLarge) {
  // A blank line is (0, 0); behind a comma the rest is a line of its own.
  const std::pair<std::string, int> cases[] = {
      {"0 48 0 0 0 0 1 2", 9},  {"64 48 0 0 0 0 1 2", 9},  {"16 64 0 0 0 0 1 2", 9},     {"16 0 0 0 0 0 1 2", 9},
      {"16 48 1 2\r\n\r\n", 9}, {"3e9 48 0 0 0 0 1 2", 6}, {"16 48 0 0 0 0 1e999 2", 6}, {"16 48 0 0 0 0 1,500 2", 9}};
  for (const auto& [lines, number] : cases) EXPECT_EQ(LoadLines(lines), ReadFailed("in.dat", number)) << lines;
}

TEST_F(DatFile, EndsFieldsAtCommasAndEveryLineEnd) {
  for (const std::string lineEnd : {"\n", "\r", "\r\n", ",", " \n", "\n  "}) {
    DatImage image;
    image.data = "32 48 0 0 0 0 1 2" + lineEnd + "16 16 0 0 0 0 3 4" + lineEnd + "32 48 0 0 0 0 5 6";
    EXPECT_EQ(Load("in.dat", image.Build(lineEnd)), Loaded("in.dat"));
    EXPECT_EQ(FilledPoints(), 2);
    EXPECT_EQ(field_.velX(2, 1), 5) << "the later line counts";
    EXPECT_EQ(field_.headerLines[6], "x");
  }
}

TEST_F(DatFile, TheQuickWayGivesTheSameField) {
  std::mt19937_64 random(7);
  const auto below = [&](std::uint64_t limit) { return random() % limit; };
  const auto pick = [&](std::initializer_list<std::string> choices) {
    return *(choices.begin() + below(choices.size()));
  };
  const auto position = [&](std::uint64_t limit) {
    const std::string whole = std::to_string(below(below(20) == 0 ? limit + 40 : limit));
    return pick({"", "", "", "0", "+", "-0"}) + whole +
           pick({"", "", ".", ".0", ".5", ".499999", ".50000001", "E0", "e-1", ".0px", "0.000000",
                 ".00000000000000000001"});
  };
  const auto velocity = [&] {
    return pick({"", "-"}) + std::to_string(below(40000)) + pick({"", ".", "."}) + std::to_string(below(1000000)) +
           pick({"", "", "", "", "x", "E-5"});
  };
  int loaded = 0;
  for (int turn = 0; turn < 1500; ++turn) {
    DatImage image;
    const bool fine = turn % 4 < 2;  // a grid where every half pixel counts
    image.header[7] = fine ? "Image: 64x52" : "Image: 640x480";
    image.header[8] = fine ? "Window: 2x2" : "Window: 32x32";
    image.header[9] = fine ? "Grid: 1x1" : "Grid: 16x16";
    for (std::uint64_t k = 0, count = below(turn % 2 == 0 ? 3 : 30); k < count; ++k) {
      image.data += position(fine ? 60 : 620) + pick({" ", " ", "  "}) + position(fine ? 50 : 460) + " 1 2 3 4 " +
                    velocity() + " " + velocity() + pick({"\r\n", "\r\n", " 9\n", "\r"});
    }
    const std::string quickLog = LoadDat(image);
    const VectorField quick = field_;
    image.data = WithTabs(image.data);
    ASSERT_EQ(LoadDat(image), quickLog) << image.data;
    ASSERT_EQ(FirstDifference(field_, quick), "") << image.data;
    loaded += context_.abortCurrentFile ? 0 : 1;
  }
  EXPECT_GT(loaded, 300);
  EXPECT_LT(loaded, 1400);
}

TEST_F(DatFile, RefusesWhatKorvoDidNotWrite) {
  const auto refused = [&](std::size_t field, const std::string& text) {
    DatImage image;
    image.header[field - 1] = text;
    EXPECT_EQ(LoadDat(image), LoadRefused("in.dat", kNotKorvo)) << text;
  };
  for (const std::string first : {"date and time: 1", "Date and time:1", "", "\tDate and time: 1"}) refused(1, first);
  for (std::size_t field = 2; field <= 13; ++field) refused(field, "no colon");
  for (std::size_t field = 8; field <= 10; ++field) {
    refused(field, "64x64");  // the colon is missing
    refused(field, "Size: 64 64");
    refused(field, "Size: 64X64");
  }
  DatImage image;
  image.header[4] = "Flow: Nozzle, section 1";  // a comma without quotes ends the field
  EXPECT_EQ(LoadDat(image), LoadRefused("in.dat", kNotKorvo));
  image = {};
  image.header[0] = "   \"Date and time: \"";
  EXPECT_EQ(LoadDat(image), Loaded("in.dat"));
  EXPECT_EQ(field_.headerLines[0], "");
}

TEST_F(DatFile, AHeaderThatEndsEarlyIsAReadError) {
  for (std::size_t count = 0; count <= 16; ++count) {
    DatImage image;
    image.header.resize(count);
    EXPECT_EQ(LoadDat(image), count < 16 ? ReadFailed("in.dat", 62) : Loaded("in.dat")) << count;
  }
}

TEST_F(DatFile, ReadsNumbersOfTheHeaderByTheirPrefix) {
  const std::tuple<std::string, std::int32_t, std::int32_t> pairs[] = {
      {"Image [px]: 2016 x 1616", 2016, 1616}, {"Image:64x48x7", 64, 48}, {"Image:62.5px x 63.5", 62, 0},
      {"Image: 62.5x63.5:9", 62, 64},          {"Image: x", 0, 0},        {"x: +6.4e1x6,4", 64, 6}};
  for (const auto& [text, width, height] : pairs) {
    DatImage image;
    image.header[7] = text;
    LoadDat(image);
    EXPECT_EQ(std::pair(field_.imageWidth, field_.imageHeight), std::pair(width, height)) << text;
  }
  DatImage image;
  image.header[10] = "Scale: 80.5 px/cm";
  image.header[11] = "Delay: -2.5";
  image.header[12] = "Valid: many";
  EXPECT_EQ(LoadDat(image), Loaded("in.dat"));
  EXPECT_EQ(std::tuple(field_.pixelScale, field_.pulseDelay, field_.validVectorCount), std::tuple(80, -2, 0));
  image.header[11] = "Delay: 1e400";
  EXPECT_EQ(LoadDat(image), ReadFailed("in.dat", 6));
}

}  // namespace
}  // namespace quiverion::test
