#include "field/formats/field_readers.h"

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
  std::string comment2 = {};
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

class VecFile : public FieldTest {
 protected:
  std::string LoadVec(const VecImage& image) { return Load("in.vec", image.Build()); }
};

TEST_F(VecFile, HoldsWhatItsHeaderAndFramesSay) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const std::string cut("\0abc", 4);
  const std::vector<float> zeros(60, 0);
  const VecImage images[] = {{},
                             {.date = "123456789", .time = cut, .comment1 = cut, .comment2 = std::string(40, '\xB2')},
                             // Computed in double precision, in the order of the definition.
                             {.rows = 6,
                              .columns = 1,
                              .spacing = 7,
                              .fx = 1.3F,
                              .ox = -3.3F,
                              .fy = -7.64F,
                              .oy = 9.9F,
                              .fv = 6.9F,
                              .frames = {0.3F, 0.7F, 1e30F, -0.1F, 0.9F, 1e-30F}},
                             // Scale and delay; 0.5 and 62.5 are halves.
                             {.spacing = 1, .fx = 2, .fv = 16},
                             {.spacing = 3, .fx = 1, .fv = 16},
                             {.fx = 0},
                             {.fv = 0},
                             {.spacing = 0},
                             {.fx = -0.125F},
                             {.fx = 1e-10F},
                             {.fx = -1e-10F},
                             {.fx = nan},
                             {.fv = 1e-12F},
                             // A simple vector is invalid where both components are zero.
                             {.columns = 6, .frames = {0, 0, 0.1F, -0.0F, nan, 1e-45F, /* y */ 0, 0.1F, 0, 0, 0, 0}},
                             // The status chooses the peak; an unknown one is a warning per vector.
                             Extended({0, 1, 2, 3, 4, 0.5F, 1.5F, 2.5F, 3.5F, 4.5F, 0.4F, -0.5F}, 1),
                             Extended({0, 1, 2, 3, 4, 0.5F, 1.5F, 2.5F, 3.5F, 4.5F, 0.4F, -0.5F}, 3),
                             Extended({4.6F, 1, -0.6F, 2147483520.0F, -2147483648.0F, 5}, 1),
                             Extended({1, nan}, 1),
                             Extended({1, 2147483648.0F}, 1),
                             Extended({1, -3e9F}, 1),
                             // The rows of all frames are counted together.
                             {.rows = 27, .subType = 1, .frames = zeros},
                             {.rows = 6, .frames = zeros},
                             {.rows = 30, .subType = 3, .frames = zeros},
                             {.rows = 0, .subType = 1},
                             {.rows = -2},
                             {.rows = -10, .subType = 3},
                             {.columns = 0},
                             {.columns = -5},
                             {.rows = 27, .columns = 3, .subType = 1, .frames = zeros},
                             {.rows = 32766, .columns = 32767},
                             {.rows = 32760, .columns = 32767, .subType = 1},
                             // Other kinds of images.
                             {.imageType = 0},
                             {.imageType = 20 + 256},
                             {.rows = 10, .subType = 1},
                             {.rows = -8, .subType = 1},
                             {.rows = 3},
                             {.rows = 18, .subType = 3},
                             {.rows = 32767, .subType = 3},
                             {.subType = 0},
                             {.rows = 18, .subType = 4},
                             {.rows = 9, .subType = 257}};
  const long before = PeakMemory();
  std::string told;
  for (const VecImage& image : images) {
    told += Told("in.vec", image.Build());
    const std::string log = LoadVec(image);
    const bool isForeign = log.find("VEC-Format") != std::string::npos;  // seen before the rest of the header is there
    EXPECT_TRUE(!isForeign || Load("in.vec", image.Build().substr(0, 16)) == log) << log;
  }
  ExpectApproved("vec_files.txt", told);
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
