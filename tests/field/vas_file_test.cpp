#include "field/formats/vas_file.h"

#include <limits>

#include "field/field_fixture.h"
#include "platform/text/text.h"

namespace quiverion::test {
namespace {

std::string Put(std::string bytes, std::size_t at, const Bytes& value) {
  return bytes.replace(at, value.Get().size(), value.Get());
}

class VasFile : public FieldTest {
 protected:
  VasFile() {
    sample_ = Sample(3, 2);
    sample_.windowHeight = 24;
    sample_.status = {1, 0, -1, 4, 2147483647, -2147483647 - 1};
    sample_.offsetX = 101, sample_.offsetY = 102, sample_.galileiPointSet = true;
    sample_.galileiPointX = 103, sample_.galileiPointY = 104, sample_.galileiVelX = 105, sample_.galileiVelY = 106;
    sample_.scaleFactor = 2.5, sample_.showTable = true, sample_.showVectorField = false;
    sample_.showCoordSystem = false, sample_.aspectRatio1to1 = true, sample_.background = 2;
  }
  // Places of items, some counted from the end of the file.
  std::size_t HeaderEnd() const {
    std::size_t at = 11;
    for (const std::string& line : sample_.headerLines) at += 4 + samples::Windows1252Bytes(line).size();
    return at;
  }
  std::size_t GridEnd() const { return HeaderEnd() + 13 * 4 + 5 * 8 + 6 * 20; }
  std::size_t FromEnd(std::size_t bytes) const { return samples::VasBytes(sample_).size() - 8 - InfoSize() - bytes; }
  std::size_t InfoSize() const {
    return samples::Windows1252Bytes(sample_.commentLines[0] + sample_.commentLines[1]).size() + 4;
  }
  std::string Image() const {
    // The steps of the grid differ, too.
    return Put(samples::VasBytes(sample_), HeaderEnd() + 20, Bytes().I32(12));
  }

  // What the image holds, set without the reader.
  VectorField FieldOfImage() const {
    const samples::SampleField& s = sample_;
    VectorField f;
    CreateArrays(f, 3, 2);
    for (int i = 1; i <= 3; ++i) f.posX[static_cast<std::size_t>(i - 1)] = samples::PositionX(s, i);
    for (int j = 1; j <= 2; ++j) f.posY[static_cast<std::size_t>(j - 1)] = samples::PositionY(s, j);
    std::ranges::copy(s.u, f.velX.Values().begin());
    std::ranges::copy(s.v, f.velY.Values().begin());
    std::ranges::copy(s.status, f.status.Values().begin());
    f.headerLines = s.headerLines;
    f.infoText = s.commentLines[0] + "\r\n" + s.commentLines[1] + "\r\n";
    f.imageWidth = s.imageWidth, f.imageHeight = s.imageHeight;
    f.windowWidth = s.windowWidth, f.windowHeight = s.windowHeight, f.gridStepX = s.gridStep, f.gridStepY = 12;
    f.firstPixelX = s.firstPixelX, f.firstPixelY = s.firstPixelY;
    f.pixelScale = s.pixelScale, f.pulseDelay = s.pulseDelay, f.validVectorCount = 3;
    f.offsetX = 101, f.offsetY = 102, f.galileiPointSet = kFlagTrue;
    f.galileiPointX = 103, f.galileiPointY = 104, f.galileiVelX = 105, f.galileiVelY = 106;
    f.streamlineCount = 2, f.streamlineSetting = s.streamlineSetting;
    std::ranges::copy(s.streamlines, f.streamlines.begin());
    f.showTable = true, f.showVectorField = false, f.aspectRatio1to1 = kFlagTrue;
    f.background = Background::vorticity, f.scaleFactor = 2.5;
    f.paletteMin = s.paletteMin, f.paletteSetting = s.paletteSetting, f.paletteMax = s.paletteMax;
    f.viewerSettings = s.viewerSettings;
    f.colours = {0xFF0000, 0x0000FF, 0x00C800, 0, 0x009600, 0xFFFFFF, 0x0000FF, 0xFFFFFF, 0x00FF00};
    return f;
  }
  void ExpectSavedAs(const std::string& bytes) {
    EXPECT_EQ(Save("out.vas"), "Datei speichern unter 'out.vas'... fertig\r\n");
    EXPECT_TRUE(files_.files["out.vas"] == bytes);
  }

  samples::SampleField sample_;
};

TEST_F(VasFile, HoldsEveryItemInItsPlace) {
  EXPECT_EQ(Load("in.vas", Image()), Loaded("in.vas"));
  EXPECT_EQ(FirstDifference(field_, FieldOfImage()), "");
  field_ = FieldOfImage();
  ExpectSavedAs(Image());
  EXPECT_FALSE(context_.runHadError);
}

TEST_F(VasFile, CarriesWhatItDoesNotInterpret) {
  using Limits = std::numeric_limits<double>;
  sample_.u = {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(), -0.0, Limits::denorm_min(), Limits::max()};
  sample_.streamlineSetting = -3;
  for (const std::int32_t flags : {0, 1, 3, 7}) {
    sample_.showHeader = (flags & 1) != 0, sample_.showTable = (flags & 2) != 0;
    sample_.showVectorField = (flags & 4) != 0, sample_.background = flags % 3;
    std::string image = Put(Image(), HeaderEnd() + 48, Bytes().I32(2147483647));  // valid vectors
    image = Put(image, GridEnd() + 20, Bytes().I16(1));                           // a point for Galilei
    image = Put(image, FromEnd(8), Bytes().I16(255).I16(-2));                     // axes, aspect
    image = Put(image, FromEnd(124 - 8), Bytes().I32(-1));                        // a colour
    EXPECT_EQ(Load("in.vas", image), Loaded("in.vas"));
    ExpectSavedAs(image);
  }
}

TEST_F(VasFile, ReplacesForeignValues) {
  std::string image = Put(Image(), 9, Bytes().I16(5));
  image = Put(image, GridEnd(), Bytes().I32(77));
  image = Put(image, FromEnd(88), Bytes().I32(1).I32(2).I32(3).I32(4).I32(5).I32(6).I32(7));
  image = Put(image, FromEnd(36), Bytes().I32(-1 - 2));  // all flags but that of the table
  image = Put(image, FromEnd(136), Bytes().I32(99));     // the setting of the streamlines
  image = Put(image, image.size() - 4, Bytes().I32(12));
  sample_.showHeader = sample_.showVectorField = true, sample_.showTable = false;
  sample_.background = 0, sample_.streamlineSetting = 50;
  for (const std::int32_t background : {7, 3, -1, 2147483647}) {
    image = Put(image, FromEnd(4), Bytes().I32(background));
    EXPECT_EQ(Load("in.vas", image + "and what follows"), Loaded("in.vas"));
    ExpectSavedAs(Image());
  }
}

TEST_F(VasFile, KeepsFiftyStreamlinesAndReadsTheRestFromItsTruePlace) {
  for (const std::size_t count : {0, 50, 51, 600}) {
    sample_.streamlines.clear();
    for (std::size_t k = 0; k < count; ++k) {
      const auto number = static_cast<double>(k);
      sample_.streamlines.push_back({number + 0.25, 2.0 * number, -number, 1e6 + number});
    }
    const std::string surplus = "!!! WARNUNG !!!\r\n    Es können nicht alle Stromlinien eingelesen werden!\r\n";
    EXPECT_EQ(Load("in.vas", Image()), Loading("in.vas") + (count > 50 ? surplus : "") + "fertig\r\n");
    EXPECT_EQ(context_.runHadError, count > 50);
    sample_.streamlines.resize(std::min<std::size_t>(count, 50));
    ExpectSavedAs(Image());
  }
}

TEST_F(VasFile, ALoadResetsAllButTwoSettingsBeforeItOpensTheFile) {
  Load("in.vas", Image());
  VectorField expected;
  expected.colours = field_.colours, expected.paletteSetting = 0.5, expected.viewerSettings = {1.5, 2.25, 3.125};
  field_.colours = {};
  LoadExisting("dir/gone.vas");
  EXPECT_EQ(field_.filePath + "|" + field_.fileDirectory + "|" + field_.fileName, "dir/gone.vas|dir|gone.vas");
  expected.columnCount = field_.columnCount, expected.rowCount = field_.rowCount;
  expected.posX = field_.posX, expected.posY = field_.posY;
  expected.velX = field_.velX, expected.velY = field_.velY, expected.status = field_.status;
  expected.derivedScalar = field_.derivedScalar;
  EXPECT_EQ(FirstDifference(field_, expected), "");
}

TEST_F(VasFile, AFileThatEndsEarlyIsAReadErrorAtEveryLength) {
  const std::string bytes = Image();
  for (std::size_t length = 0; length < bytes.size(); ++length) {
    ASSERT_EQ(Load("in.vas", bytes.substr(0, length)), ReadFailed("in.vas", 62)) << length;
  }
}

TEST_F(VasFile, CountsAreCheckedBeforeMemoryIsTaken) {
  const auto changed = [&](std::size_t at, std::int32_t value) { return Put(Image(), at, Bytes().I32(value)); };
  const auto grid = [&](std::int32_t columns, std::int32_t rows) {
    return Put(Image(), HeaderEnd() + 40, Bytes().I32(columns).I32(rows));
  };
  const std::int32_t most = 2147483647;
  const std::pair<std::string, int> cases[] = {{changed(11, -1), 5},
                                               {changed(11, most), 62},
                                               {changed(FromEnd(0), most), 62},  // the info text
                                               {changed(FromEnd(0), -5), 5},
                                               {changed(GridEnd() + 54, -1), 5},  // streamlines
                                               {grid(0, 2), 9},
                                               {grid(65536, 65536), 62},             // 2^32 points
                                               {grid(1 << 30, 1 << 30), 62},         // 20 bytes each do not fit 64 bits
                                               {grid(2144933926, 1720029120), 62}};  // which leaves 304 bytes
  const long before = PeakMemory();
  for (const auto& [image, number] : cases) EXPECT_EQ(Load("in.vas", image), ReadFailed("in.vas", number));
  EXPECT_LT(PeakMemory() - before, 50 * 1024);
}

TEST_F(VasFile, OnlyTheExtensionVasIsWritten) {
  field_ = FieldOfImage();
  for (const std::string path : {"new/a.vasx", "vas", "", "new/a.vas "}) {
    EXPECT_EQ(Save(path), "Datei speichern unter '" + path + "'... !!! FEHLER !!!\r\n    Unbekanntes Dateiformat!\r\n");
    EXPECT_TRUE(context_.runHadError);
  }
  EXPECT_TRUE(files_.files.empty());
  for (const std::string path : {"a.txt.vAs", "b/c/d/a.vas", ".vas"}) {
    Save(path);
    EXPECT_EQ(files_.files.count(path), 1u) << "missing directories are created";
  }
}

}  // namespace
}  // namespace quiverion::test
