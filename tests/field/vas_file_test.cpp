#include "field/formats/vas_file.h"

#include <limits>

#include "field/vas_image.h"

namespace quiverion::test {
namespace {

using VasFile = FieldTest;

TEST_F(VasFile, HoldsEveryItemInItsPlace) {
  EXPECT_EQ(Load("in.vas", VasImage().Build()), Loaded("in.vas"));
  EXPECT_EQ(FirstDifference(field_, FieldOfImage()), "");
  field_ = FieldOfImage();
  EXPECT_EQ(Save("out.vas"), "Datei speichern unter 'out.vas'... fertig\r\n");
  EXPECT_EQ(files_.files["out.vas"], VasImage().Build());
  EXPECT_FALSE(context_.runHadError);
}

TEST_F(VasFile, CarriesWhatItDoesNotInterpret) {
  VasImage image;
  using Limits = std::numeric_limits<double>;
  image.velX = {Limits::quiet_NaN(),  Limits::infinity(), -Limits::infinity(), -0.0,
                Limits::denorm_min(), Limits::max()};
  image.header[3].clear();
  for (int byte = 0; byte < 256; ++byte) image.header[3].push_back(static_cast<char>(byte));
  image.info = "no line end";
  image.galileiPointSet = 1;  // flags with values that this program does not write
  image.showCoordSystem = 255;
  image.aspectRatio = -2;
  image.streamlineSetting = -3;
  image.geometry[12] = 2147483647;
  image.colours[2] = -1;
  for (const std::int32_t flags : {0, 1, 3, 7}) {
    image.viewFlags = flags;
    image.background = flags % 3;
    EXPECT_EQ(Load("in.vas", image.Build()), Loaded("in.vas"));
    Save("out.vas");
    EXPECT_EQ(files_.files["out.vas"], image.Build());
  }
}

TEST_F(VasFile, ReplacesForeignValues) {
  VasImage image;
  image.version = 5;
  image.reserved10 = 77;
  image.reserved19 = {1, 2, 3, 4, 5, 6, 7};
  image.viewFlags = -1 - 2;  // all bits but showTable
  image.endMark = 12;
  image.streamlineSetting = 99;
  for (const std::int32_t background : {7, 3, -1, 2147483647}) {
    image.background = background;
    EXPECT_EQ(Load("in.vas", image.Build() + "and what follows"), Loaded("in.vas"));
    EXPECT_EQ(field_.background, Background::none);
    EXPECT_EQ(field_.streamlineSetting, 50);
    EXPECT_TRUE(field_.showHeader && !field_.showTable && field_.showVectorField);
    Save("out.vas");
    VasImage written;
    written.viewFlags = 5;
    written.streamlineSetting = 50;
    written.background = 0;
    EXPECT_EQ(files_.files["out.vas"], written.Build());
  }
}

TEST_F(VasFile, KeepsFiftyStreamlinesAndReadsTheRestFromItsTruePlace) {
  for (const std::int32_t count : {0, 50, 51, 600}) {
    VasImage image;
    image.streamlineCount = count;
    image.streamlines.clear();
    for (std::int32_t k = 0; k < count; ++k) image.streamlines.push_back({k + 0.25, 2.0 * k, -1.0 * k, 1e6 + k});
    const bool surplus = count > 50;
    EXPECT_EQ(Load("in.vas", image.Build()),
              Loading("in.vas") +
                  (surplus ? "!!! WARNUNG !!!\r\n    Es können nicht alle Stromlinien eingelesen werden!\r\n" : "") +
                  "fertig\r\n");
    EXPECT_EQ(context_.runHadError, surplus);
    EXPECT_FALSE(context_.abortCurrentFile);
    image.streamlineCount = std::min(count, 50);
    image.streamlines.resize(static_cast<std::size_t>(image.streamlineCount));
    Save("out.vas");
    EXPECT_EQ(files_.files["out.vas"], image.Build()) << count;
  }
}

TEST_F(VasFile, ALoadResetsAllButTwoSettingsBeforeItOpensTheFile) {
  Load("in.vas", VasImage().Build());
  LoadExisting("dir/gone.vas");
  EXPECT_EQ(field_.filePath + "|" + field_.fileDirectory + "|" + field_.fileName, "dir/gone.vas|dir|gone.vas");
  VectorField expected;
  expected.columnCount = field_.columnCount, expected.rowCount = field_.rowCount;
  expected.posX = field_.posX, expected.posY = field_.posY;
  expected.velX = field_.velX, expected.velY = field_.velY, expected.status = field_.status;
  expected.derivedScalar = field_.derivedScalar;
  expected.paletteSetting = 300;
  expected.viewerSettings = {501, 502, 503};
  expected.colours = {0xFF0000, 0x0000FF, 0x00C800, 0, 0x009600, 0xFFFFFF, 0x0000FF, 0xFFFFFF, 0x00FF00};
  EXPECT_EQ(FirstDifference(field_, expected), "");
}

}  // namespace
}  // namespace quiverion::test
