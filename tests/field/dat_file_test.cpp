#include "field/field_fixture.h"

namespace quiverion::test {
namespace {

/// A DAT file of 64 x 64 pixels, window 32, step 16: columns at 16, 32, 48 and rows at 48, 32, 16 pixels.
struct DatImage {
  std::vector<std::string> header = {"Date and time: 24.11.03 10:15:02",
                                     "File:duese_2.tif",
                                     "Project:   Freistrahl  ",
                                     "Operator:",
                                     "\"Flow: D\xFCse, Querschnitt 1\"",
                                     "Laser: Nd:YAG",
                                     "Comment: x",
                                     "Image: 64x64",
                                     "Window: 32x32",
                                     "Grid: 16x16",
                                     "Scale: 77",
                                     "Delay: 50",
                                     "Valid: 77",
                                     "Method: none",
                                     "",
                                     "x y dx dy d SNR u v"};
  std::string data = "32.0 48.0 0 0 0 0 1.5 -0.25\r\n";

  std::string Build(const std::string& lineEnd = "\r\n") const {
    std::string text;
    for (const std::string& field : header) text += field + lineEnd;
    return text + data;
  }
};

class DatFile : public FieldTest {
 protected:
  // What becomes of the file with field `number` of its header, counted from 1, replaced.
  std::string With(std::size_t number, const std::string& text) {
    DatImage image;
    image.header[number - 1] = text;
    return text + "\r\n" + Told("in.dat", image.Build());
  }
};

TEST_F(DatFile, ReadsItsHeaderAndRefusesWhatKorvoDidNotWrite) {
  std::string told = Told("in.dat", DatImage().Build());
  for (const char* first :
       {"date and time: 1", "Date and time:1", "", "\tDate and time: 1", "   \"Date and time: \""}) {
    told += With(1, first);
  }
  told += With(5, "Flow: Nozzle, section 1");  // a comma without quotes ends the field
  for (const char* size : {"64x64", "Size: 64 64", "Size: 64X64"}) {
    for (std::size_t field = 8; field <= 10; ++field) told += With(field, size);
  }
  for (const char* size : {"Image [px]: 216 x 166", "Image:64x48x7", "Image:62.5px x 63.5", "Image: 62.5x63.5:9",
                           "Image: x", "x: +6.4e1x6,4"}) {
    told += With(8, size);
  }
  told += With(11, "Scale: 80.5 px/cm") + With(12, "Delay: -2.5") + With(12, "Delay: 1e400") + With(13, "Valid: many");
  for (std::size_t field = 2; field <= 13; ++field) told += With(field, "no colon");
  for (std::size_t count = 0; count < 16; ++count) {
    DatImage image;
    image.header.resize(count);
    image.data.clear();
    EXPECT_EQ(Load("in.dat", image.Build()), ReadFailed("in.dat", 62)) << count;
  }
  ExpectApproved("dat_headers.txt", told);
}

TEST_F(DatFile, TheGridIsPlacedInTheImageWithoutTakingMuchMemory) {
  const char* const placements[][3] = {
      {"216x166", "32x32", "16x16"},    {"64x48", "33x31", "7x5"},
      {"64x64", "32x40", "16x30"},      {"64x64", "100x32", "16x16"},
      {"64x64", "32x100", "16x16"},     {"64x64", "100x100", "16x16"},
      {"64x64", "1000x1000", "0x16"},   {"64x64", "1000x1000", "16x0"},
      {"64x64", "1000x1000", "0.5x16"}, {"64x64", "32x32", "-16x16"},  // falls for ever
      {"64x64", "32x32", "16x-16"},     {"64x64", "-40x32", "-16x16"},
      {"16x64", "32x32", "16x16"},      {"2147483647x2147483647", "2x2", "1x1"},
      {"2147483647x3", "2x2", "1x1"},   {"20000x20000", "2x2", "1x1"},
      {"1025x1025", "2x2", "1x1"}};
  const long before = PeakMemory();
  std::string told;
  for (const auto& [size, window, step] : placements) {
    const bool isSparse = std::string_view(size) == "1025x1025";  // a field of a million points
    EXPECT_TRUE(isSparse || PeakMemory() - before < 50 * 1024);
    DatImage image;
    image.header[7] = std::string("Image:") + size;
    image.header[8] = std::string("Window:") + window;
    image.header[9] = std::string("Grid:") + step;
    image.data.clear();
    told += std::string(size) + " " + window + " " + step + "\r\n" + Told("in.dat", image.Build());
  }
  ExpectApproved("dat_grids.txt", told);
}

TEST_F(DatFile, PutsEachLineAtItsGridPoint) {
  std::string told;
  for (const std::string line : {"16 48 0 0 0 0 1 2",
                                 "48 16 0 0 0 0 1 2 9 9 9",
                                 "30.5 32.5 0 0 0 0 1 2",  // 14.5 is 14, 32.5 is 32
                                 "0.6 63.4 0 0 0 0 1 2",   // less than one step outside counts as the edge
                                 "3.2E1 4.8e+1 0 0 0 0 15e-1 -25E-2",
                                 "+32 48. 0 0 0 0 +.5 -.5",
                                 "32px 48px 0 0 0 0 1.5m/s x",
                                 "32 48",
                                 "32\t1 48 0 0 0 0 1\t5 2",  // a tab belongs to its column
                                 "32 48 1e999 x 0 0 -0 -0.0",
                                 "32 48 0 0 0 0 nan inf",
                                 "\"32 48 a,b 0 0 0 1 2\"",
                                 "  \"32 48 0 0 0 0 1 2\"  ",
                                 "0 48 0 0 0 0 1 2",
                                 "64 48 0 0 0 0 1 2",
                                 "16 64 0 0 0 0 1 2",
                                 "16 0 0 0 0 0 1 2",
                                 "16 48 1 2\r\n\r\n",  // a blank line is (0, 0)
                                 "3e9 48 0 0 0 0 1 2",
                                 "16 48 0 0 0 0 1e999 2",
                                 "16 48 0 0 0 0 1,500 2"}) {  // behind a comma the rest is a line of its own
    DatImage image;
    image.data = line;
    const std::string alone = Told("in.dat", image.Build());
    for (const char* const lineEnd : {"\r\n", "\n", "\r"}) {
      image.data = line + lineEnd;
      EXPECT_EQ(Told("in.dat", image.Build()), alone) << line;
    }
    told += line + "\r\n" + alone;
  }
  ExpectApproved("dat_lines.txt", told);
}

TEST_F(DatFile, EndsFieldsAtCommasAndEveryLineEnd) {
  for (const std::string lineEnd : {"\n", "\r", "\r\n", ",", " \n", "\n  "}) {
    DatImage image;
    image.data = "32 48 0 0 0 0 1 2" + lineEnd + "16 16 0 0 0 0 3 4" + lineEnd + "32 48 0 0 0 0 5 6";
    EXPECT_EQ(Load("in.dat", image.Build(lineEnd)), Loaded("in.dat"));
    EXPECT_EQ(std::ranges::count(field_.status.Values(), 1), 2);
    EXPECT_EQ(field_.velX(2, 1), 5) << "the later line counts";
    EXPECT_EQ(field_.headerLines[6], "x");
  }
}

}  // namespace
}  // namespace quiverion::test
