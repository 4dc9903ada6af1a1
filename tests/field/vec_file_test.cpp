#include "field/vec_file.h"

#include <limits>

#include "field/field_fixture.h"

namespace quiverion::test {
namespace {

// A VEC file with every byte outside the described items set to 0xAA.
struct VecImage {
  int imageType = 20;
  int rows = 2;
  int columns = 2;
  int subType = 2;
  int spacing = 8;
  std::string date = "24.11.03";
  std::string time = "10:15:06";
  float fx = 0.125F, ox = 1.5F, fy = -0.125F, oy = 4.5F, fv = 2.5F;
  std::string comment1 = "D\xFCse";
  std::string comment2;
  std::vector<float> frames = {2, 0, -0.5F, 0};

  std::string Build() const {
    std::string bytes(256, '\xAA');
    const auto put = [&bytes](std::size_t offset, const Bytes& value) {
      bytes.replace(offset, value.Get().size(), value.Get());
    };
    const auto text = [](std::string value, std::size_t size) {
      value.resize(size, '\0');
      return Bytes().Raw(value);
    };
    put(0, Bytes().I16(imageType));
    put(10, Bytes().I16(rows).I16(columns).I16(subType));
    put(20, Bytes().I16(spacing));
    put(34, text(date, 9));
    put(43, text(time, 9));
    put(54, Bytes().F32(fx).F32(ox));
    put(86, Bytes().F32(fy).F32(oy));
    put(118, Bytes().F32(fv));
    put(148, text(comment1, 40));
    put(188, text(comment2, 40));
    Bytes values;
    for (const float value : frames) values.F32(value);
    return bytes + values.Get();
  }
};

class VecFile : public FieldTest {
 protected:
  std::string LoadVec(const VecImage& image) { return Load("in.vec", image.Build()); }
};

TEST_F(VecFile, ReadsASimpleFile) {
  EXPECT_EQ(LoadVec({}), Loaded("in.vec"));
  EXPECT_EQ(std::pair(field_.columnCount, field_.rowCount), std::pair(2, 1));
  EXPECT_EQ(std::pair(field_.velX(1, 1), field_.velY(1, 1)), std::pair(5.0, 1.25));
  EXPECT_EQ(std::pair(field_.gridStepX, field_.gridStepY), std::pair(8, 8));
  const std::string none = "No information (DaVis)";
  EXPECT_EQ(field_.headerLines, (std::array<std::string, 7>{"24.11.03 10:15:06", none, none, none, none, none, none}));
  EXPECT_EQ(field_.infoText, "Düse\r\n");
}

TEST_F(VecFile, TextsEndAtAZeroByteOrTheirSize) {
  VecImage image;
  image.date = "123456789";
  image.time = std::string("\0abc", 4);
  image.comment1 = std::string("\0abc", 4);
  image.comment2 = std::string(40, '\xB2');
  LoadVec(image);
  EXPECT_EQ(field_.headerLines[0], "123456789");
  std::string squares;
  for (int k = 0; k < 40; ++k) squares += "²";
  EXPECT_EQ(field_.infoText, squares + "\r\n");
}

TEST_F(VecFile, ComputesInDoublePrecisionInTheStatedOrder) {
  VecImage image;
  image.spacing = 7;
  image.fx = 1.3F;
  image.ox = -3.3F;
  image.fy = -7.64F;
  image.oy = 9.9F;
  image.fv = 6.9F;
  image.rows = 6;
  image.columns = 1;
  image.frames = {0.3F, 0.7F, 1e30F, -0.1F, 0.9F, 1e-30F};
  LoadVec(image);
  const double fx = image.fx, ox = image.ox, fy = image.fy, oy = image.oy, fv = image.fv;
  const double dx = fx * 7, dy = fy * 7, sv = dy * fv / dx;
  EXPECT_TRUE(SameBits(field_.posX, std::vector<double>{0 * dx + (ox + dx / 2)}));
  for (int j = 1; j <= 3; ++j) {
    const auto at = static_cast<std::size_t>(j - 1);
    EXPECT_EQ(field_.posY[at], (j - 1) * dy + (oy + dy / 2));
    EXPECT_EQ(field_.velX(1, j), static_cast<double>(image.frames[at]) * fv);
    EXPECT_EQ(field_.velY(1, j), static_cast<double>(image.frames[at + 3]) * sv);
  }
}

TEST_F(VecFile, DerivesScaleAndDelay) {
  struct Case {
    float fx, fv;
    int spacing;
    std::int32_t scale, delay;
  };
  const Case cases[] = {{0.125F, 2.5F, 8, 8, 50}, {2, 16, 1, 0, 125},    // 0.5 is even 0
                        {1, 16, 3, 1, 62},                               // 62.5
                        {0, 2.5F, 8, 0, 0},       {0.125F, 0, 8, 8, 0},  //
                        {0.125F, 2.5F, 0, 8, 0},  {-0.125F, 2.5F, 8, -8, -50}};
  for (const Case& c : cases) {
    VecImage image;
    image.fx = c.fx;
    image.fv = c.fv;
    image.spacing = c.spacing;
    EXPECT_EQ(LoadVec(image), Loaded("in.vec"));
    EXPECT_EQ(field_.pixelScale, c.scale);
    EXPECT_EQ(field_.pulseDelay, c.delay);
  }
  VecImage image;
  image.fx = 0;  // then both velocities have the same factor
  LoadVec(image);
  EXPECT_EQ(field_.velY(1, 1), -1.25);
  for (const float fx : {1e-10F, -1e-10F, std::numeric_limits<float>::quiet_NaN()}) {
    image.fx = fx;
    EXPECT_EQ(LoadVec(image), ReadFailed("in.vec", 6));
  }
  image.fx = 0.125F;
  image.fv = 1e-12F;
  EXPECT_EQ(LoadVec(image), ReadFailed("in.vec", 6));
}

TEST_F(VecFile, ASimpleVectorIsInvalidWhereBothComponentsAreZero) {
  VecImage image;
  image.columns = 6;
  const float nan = std::numeric_limits<float>::quiet_NaN();
  image.frames = {0, 0, 0.1F, -0.0F, nan, 1e-45F, /* y */ 0, 0.1F, 0, 0, 0, 0};
  LoadVec(image);
  const std::int32_t expected[] = {0, 1, 1, 0, 1, 1};
  for (int i = 1; i <= 6; ++i) EXPECT_EQ(field_.status(i, 1), expected[i - 1]) << i;
  EXPECT_EQ(field_.validVectorCount, 4);
}

// One row of an extended file with the given statuses; displacement (frame number, minus frame number)
// everywhere.
VecImage Extended(const std::vector<float>& statuses, int subType) {
  VecImage image;
  image.subType = subType;
  image.rows = subType == 1 ? 9 : 10;
  image.columns = static_cast<int>(statuses.size());
  image.fy = image.fx;
  image.fv = 1;
  image.frames = statuses;
  for (int frame = 2; frame <= image.rows; ++frame) {
    image.frames.insert(image.frames.end(), statuses.size(), static_cast<float>(frame));
  }
  return image;
}

TEST_F(VecFile, TheStatusChoosesThePeak) {
  for (const int subType : {1, 3}) {
    EXPECT_EQ(LoadVec(Extended({0, 1, 2, 3, 4, 0.5F, 1.5F, 2.5F, 3.5F, 4.5F, 0.4F, -0.5F}, subType)), Loaded("in.vec"));
    const std::int32_t statuses[] = {0, 1, 2, 3, 4, 0, 2, 2, 4, 4, 0, 0};
    for (int i = 1; i <= 12; ++i) {
      const std::int32_t status = statuses[i - 1];
      EXPECT_EQ(field_.status(i, 1), status) << i;
      EXPECT_EQ(field_.velX(i, 1), status == 0 ? 0 : 2 * status) << i;
      EXPECT_EQ(field_.velY(i, 1), status == 0 ? 0 : 2 * status + 1) << i;
    }
    EXPECT_EQ(field_.validVectorCount, 8);
  }
}

TEST_F(VecFile, AnUnknownStatusIsAWarningPerVector) {
  const auto warning = [](const std::string& status) {
    return "!!! WARNUNG !!!\r\n    Ungültiger Status eines Vektors:  frame " + status + "\r\n";
  };
  EXPECT_EQ(LoadVec(Extended({4.6F, 1, -0.6F, 2147483520.0F, -2147483648.0F, 5}, 1)),
            Loading("in.vec") + warning("5") + warning("-1") + warning("2147483520") + warning("-2147483648") +
                warning("5") + "fertig\r\n");
  EXPECT_TRUE(context_.runHadError);
  EXPECT_FALSE(context_.abortCurrentFile);
  EXPECT_EQ(field_.status(1, 1), 5);
  EXPECT_EQ(field_.status(5, 1), std::numeric_limits<std::int32_t>::min());
  for (const int i : {1, 3, 4, 5, 6}) EXPECT_TRUE(field_.velX(i, 1) == 0 && field_.velY(i, 1) == 0) << i;
  EXPECT_EQ(field_.validVectorCount, 4);
  using Limits = std::numeric_limits<float>;
  for (const float status : {Limits::quiet_NaN(), Limits::infinity(), 2147483648.0F, -3e9F}) {
    EXPECT_EQ(LoadVec(Extended({1, status}, 1)), ReadFailed("in.vec", 6)) << status;
  }
}

TEST_F(VecFile, RefusesOtherKindsOfImages) {
  const std::string rows = "Anzahl der Zeilen nicht durch ", subTypes = "'image sub type' ungültig";
  struct Case {
    int imageType, subType, rows;
    std::string refusal;  // a part; the whole texts are in tests/approved
  };
  const Case cases[] = {{0, 2, 2, "nicht FLOAT"},  {20 + 256, 9, 2, "nicht FLOAT"}, {20, 1, 10, rows + "9 "},
                        {20, 1, -8, rows + "9 "},  {20, 2, 3, rows + "2 "},         {20, 2, -1, rows + "2 "},
                        {20, 3, 18, rows + "10 "}, {20, 3, 32767, rows + "10 "},    {20, 0, 2, subTypes},
                        {20, 4, 18, subTypes},     {20, 257, 9, subTypes}};
  for (const Case& c : cases) {
    VecImage image;
    image.imageType = c.imageType;
    image.subType = c.subType;
    image.rows = c.rows;
    EXPECT_NE(LoadVec(image).find(c.refusal), std::string::npos) << c.subType << " " << c.rows;
    EXPECT_NE(Load("in.vec", image.Build().substr(0, 16)).find(c.refusal), std::string::npos);
    EXPECT_FALSE(context_.runHadError);
  }
}

TEST_F(VecFile, TakesTheRowsOfAllFramesTogether) {
  struct Case {
    int subType, rows, columns;
    int number;  // of the read error, 0: loads
    std::int32_t fieldRows;
  };
  const Case cases[] = {{1, 27, 2, 0, 3},  {2, 6, 2, 0, 3},          {3, 30, 2, 0, 3},         {1, 0, 2, 9, 0},
                        {2, -2, 2, 9, 0},  {3, -10, 2, 9, 0},        {1, 9, 0, 9, 0},          {2, 2, -5, 9, 0},
                        {1, 27, 3, 62, 0}, {2, 32766, 32767, 62, 0}, {1, 32760, 32767, 62, 0}, {1, 9, 32767, 62, 0}};
  const long before = PeakMemory();
  for (const Case& c : cases) {
    VecImage image;
    image.subType = c.subType;
    image.rows = c.rows;
    image.columns = c.columns;
    image.frames.assign(60, 0);
    EXPECT_EQ(LoadVec(image), c.number == 0 ? Loaded("in.vec") : ReadFailed("in.vec", c.number)) << c.rows;
    if (c.number == 0) {
      EXPECT_EQ(field_.rowCount, c.fieldRows);
    }
  }
  EXPECT_LT(PeakMemory() - before, 50 * 1024);
}

TEST_F(VecFile, AFileThatEndsEarlyIsAReadErrorAtEveryLength) {
  for (const int subType : {1, 2, 3}) {
    const VecImage image = subType == 2 ? VecImage() : Extended({1, 2, 0}, subType);
    const std::string bytes = image.Build();
    const std::size_t needed = bytes.size() - (subType == 3 ? 3 * sizeof(float) : 0);  // without the peak ratio
    for (std::size_t length = 0; length < needed; ++length) {
      ASSERT_EQ(Load("in.vec", bytes.substr(0, length)), ReadFailed("in.vec", 62)) << length;
    }
    for (std::size_t length = needed; length <= bytes.size(); ++length) {
      ASSERT_EQ(Load("in.vec", bytes.substr(0, length)), Loaded("in.vec")) << length;
    }
    EXPECT_EQ(Load("in.vec", bytes + "attributes"), Loaded("in.vec"));
    files_.readFailsAt["in.vec"] = needed - 1;
    EXPECT_EQ(Load("in.vec", bytes), ReadFailed("in.vec", 57));
    files_.readFailsAt.clear();
  }
}

}  // namespace
}  // namespace quiverion::test
