#include "field/vas_file.h"

#include <limits>

#include "field/vas_image.h"
#include "generator/sample_files.h"

namespace quiverion::test {
namespace {

using VasFile = FieldTest;

TEST_F(VasFile, WritesEveryItemInItsPlace) {
  field_ = FieldOfImage();
  EXPECT_EQ(Save("out.vas"), "Datei speichern unter 'out.vas'... fertig\r\n");
  EXPECT_EQ(files_.files["out.vas"], VasImage().Build());
  EXPECT_FALSE(context_.runHadError);
}

TEST_F(VasFile, ReadsEveryItem) {
  EXPECT_EQ(Load("in.vas", VasImage().Build()), Loaded("in.vas"));
  EXPECT_EQ(FirstDifference(field_, FieldOfImage()), "");
  EXPECT_FALSE(context_.runHadError);
}

TEST_F(VasFile, ALoadAndASaveGiveTheSameBytes) {
  const std::pair<int, int> sizes[] = {{1, 1}, {1, 9}, {9, 1}, {8, 6}, {125, 100}};
  for (const auto& [columns, rows] : sizes) {
    const std::string bytes = samples::VasBytes(samples::MakeSampleField({.columns = columns, .rows = rows}));
    EXPECT_EQ(Load("in.vas", bytes), Loaded("in.vas"));
    Save("out.vas");
    EXPECT_TRUE(files_.files["out.vas"] == bytes) << columns << " x " << rows;
  }
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
  for (const std::int32_t count : {0, 1, 50, 51, 52, 600}) {
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

TEST_F(VasFile, ChoosesTheFormatByTheExtensionInAnyCase) {
  const std::string bytes = VasImage().Build();
  for (const std::string path : {"a.VAS", "a.dat.vAs", "dir/a.vas", "vas", "a.dat/vas"}) {
    EXPECT_EQ(Load(path, bytes), Loaded(path));
  }
  EXPECT_EQ(LoadExisting("dir\\a.vas"), Loaded("dir\\a.vas"));
  for (const std::string path : {"a.vasx", "a.txt", "a", "a.vas/b", "a.", ""}) {
    EXPECT_EQ(Load(path, bytes), LoadRefused(path, "    Dieses Format ist unbekannt!"));
    EXPECT_FALSE(context_.runHadError);
  }
}

TEST_F(VasFile, ALoadResetsAllButTwoSettings) {
  const std::string fieldBytes = samples::DatBytes(samples::MakeSampleField({.columns = 4, .rows = 3}));
  Load("in.vas", VasImage().Build());
  for (double& value : field_.derivedScalar.Values()) value = 5;
  Load("dir/in.dat", fieldBytes);
  EXPECT_EQ(field_.filePath, "dir/in.dat");
  EXPECT_EQ(field_.fileName, "in.dat");
  EXPECT_EQ(field_.fileDirectory, "dir");
  VectorField expected;  // what DAT supplies is taken over, the rest has its default
  expected.columnCount = field_.columnCount;
  expected.rowCount = field_.rowCount;
  expected.posX = field_.posX;
  expected.posY = field_.posY;
  expected.velX = field_.velX;
  expected.velY = field_.velY;
  expected.status = field_.status;
  expected.derivedScalar.Reset(4, 3);
  expected.headerLines = field_.headerLines;
  expected.imageWidth = field_.imageWidth;
  expected.imageHeight = field_.imageHeight;
  expected.windowWidth = expected.windowHeight = 32;
  expected.gridStepX = expected.gridStepY = 8;
  expected.firstPixelX = field_.firstPixelX;
  expected.firstPixelY = field_.firstPixelY;
  expected.pixelScale = 80;
  expected.pulseDelay = 50;
  expected.validVectorCount = field_.validVectorCount;
  expected.paletteSetting = 300;
  expected.viewerSettings = {501, 502, 503};
  expected.colours = {0xFF0000, 0x0000FF, 0x00C800, 0, 0x009600, 0xFFFFFF, 0x0000FF, 0xFFFFFF, 0x00FF00};
  EXPECT_EQ(FirstDifference(field_, expected), "");
}

TEST_F(VasFile, ALoadResetsBeforeItOpensTheFile) {
  Load("in.vas", VasImage().Build());
  LoadExisting("gone.vas");
  EXPECT_EQ(field_.filePath, "gone.vas");
  EXPECT_EQ(field_.headerLines[0] + field_.infoText + field_.fileDirectory, "");
  EXPECT_EQ(field_.pixelScale, 0);
  EXPECT_EQ(field_.offsetX, 0);
  EXPECT_EQ(field_.galileiPointSet, kFlagFalse);
  EXPECT_EQ(field_.streamlineCount, 0);
  EXPECT_EQ(field_.streamlines[0], Streamline{});
  EXPECT_EQ(field_.background, Background::none);
  EXPECT_EQ(field_.paletteMax, 100000);
  EXPECT_EQ(field_.paletteSetting, 300);
}

TEST(CreateArrays, FillsAllSixWithZeros) {
  VectorField field = FieldOfImage();
  for (double& value : field.derivedScalar.Values()) value = 5;
  for (const auto& [columns, rows] : {std::pair(3, 2), std::pair(2, 2), std::pair(5, 4)}) {
    CreateArrays(field, columns, rows);
    const std::vector<double> zeros(static_cast<std::size_t>(columns * rows));
    for (Grid<double>* const grid : {&field.velX, &field.velY, &field.derivedScalar}) {
      EXPECT_TRUE(SameBits(grid->Values(), zeros));
      for (double& value : grid->Values()) value = 7;
    }
    EXPECT_TRUE(SameBits(field.posX, std::span(zeros).first(static_cast<std::size_t>(columns))));
    EXPECT_TRUE(SameBits(field.posY, std::span(zeros).first(static_cast<std::size_t>(rows))));
    EXPECT_EQ(std::ranges::count(field.status.Values(), 0), columns * rows);
    field.posX[0] = field.posY[0] = field.status(1, 1) = 7;
  }
  EXPECT_EQ(ErrorOf([&] { CreateArrays(field, 0, 3); }), 9);
  EXPECT_EQ(ErrorOf([&] { CreateArrays(field, 3, -1); }), 9);
}

TEST_F(VasFile, TheDerivedScalarIsZeroAfterEveryLoad) {
  const samples::SampleField sample = samples::MakeSampleField({.columns = 8, .rows = 6});
  const std::pair<std::string, std::string> inputs[] = {{"a.vas", samples::VasBytes(sample)},
                                                        {"a.dat", samples::DatBytes(sample)},
                                                        {"a.vec", samples::VecBytes(sample, 1)}};
  for (const auto& [path, bytes] : inputs) {
    for (int turn = 0; turn < 2; ++turn) {  // the second load finds arrays of its size
      Load(path, bytes);
      ASSERT_EQ(field_.derivedScalar.Values().size(), 48u);
      for (double& value : field_.derivedScalar.Values()) {
        ASSERT_EQ(value, 0) << path;
        value = 3;
      }
    }
  }
}

}  // namespace
}  // namespace quiverion::test
