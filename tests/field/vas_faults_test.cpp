#include "field/vas_image.h"
#include "platform/text/text.h"

namespace quiverion::test {
namespace {

using VasFaults = FieldTest;

TEST_F(VasFaults, AFileThatEndsEarlyIsAReadErrorAtEveryLength) {
  const std::string bytes = VasImage().Build();
  for (std::size_t length = 0; length < bytes.size(); ++length) {
    ASSERT_EQ(Load("in.vas", bytes.substr(0, length)), ReadFailed("in.vas", 62)) << length;
  }
  EXPECT_EQ(Load("in.vas", bytes), Loaded("in.vas"));
}

TEST_F(VasFaults, CountsAreCheckedBeforeMemoryIsTaken) {
  const std::string bytes = VasImage().Build();
  // Replaces the count in front of a text.
  const auto textCount = [&](std::string_view text, std::int32_t count) {
    std::string changed = bytes;
    return changed.replace(changed.find(text) - 4, 4, Bytes().I32(count).Get());
  };
  const auto grid = [&](std::int32_t columns, std::int32_t rows) {
    VasImage image;
    image.geometry[10] = columns, image.geometry[11] = rows;
    return image.Build();
  };
  VasImage streamlines;
  streamlines.streamlineCount = -1;
  const std::int32_t most = 2147483647;
  const std::pair<std::string, int> cases[] = {{textCount("24.11.03", -1), 5},
                                               {textCount("24.11.03", most), 62},
                                               {textCount("Zeile 1", most), 62},
                                               {textCount("Zeile 1", -5), 5},
                                               {grid(0, 2), 9},
                                               {grid(65536, 65536), 62},            // 2^32 points
                                               {grid(1 << 30, 1 << 30), 62},        // 20 bytes each do not fit 64 bits
                                               {grid(2144933926, 1720029120), 62},  // which leaves 304 bytes
                                               {streamlines.Build(), 5}};
  const long before = PeakMemory();
  for (const auto& [image, number] : cases) EXPECT_EQ(Load("in.vas", image), ReadFailed("in.vas", number));
  EXPECT_LT(PeakMemory() - before, 50 * 1024);
}

class VasSaveFaults : public FieldTest {
 protected:
  VasSaveFaults() { field_ = FieldOfImage(); }
};

TEST_F(VasSaveFaults, OnlyTheExtensionVasIsWritten) {
  for (const std::string path : {"new/a.vasx", "vas", "", "new/a.vas "}) {
    EXPECT_EQ(Save(path), "Datei speichern unter '" + path + "'... !!! FEHLER !!!\r\n    Unbekanntes Dateiformat!\r\n");
    EXPECT_TRUE(context_.runHadError);
  }
  EXPECT_TRUE(files_.files.empty());
  for (const std::string path : {"a.txt.vAs", "b/c/d/a.vas", ".vas"}) {
    EXPECT_EQ(Save(path), "Datei speichern unter '" + path + "'... fertig\r\n");
    EXPECT_EQ(files_.files.count(path), 1u) << "missing directories are created";
  }
}

TEST_F(VasSaveFaults, ATextThatTheFileCannotHoldIsNamed) {
  field_.headerLines[2] = "Δp → 5";
  field_.infoText = "😀";
  EXPECT_EQ(Save("a.vas"),
            "Datei speichern unter 'a.vas'... !!! WARNUNG !!!\r\n"
            "    Zeichen, die der Zeichensatz der Datei nicht kennt, werden als '?' gespeichert: 'Δp → 5'\r\n"
            "fertig\r\n");
  EXPECT_TRUE(context_.runHadError);
  VasImage image;
  image.header[2] = "?p ? 5";
  image.info = "?";
  EXPECT_EQ(files_.files["a.vas"], image.Build());
}

}  // namespace
}  // namespace quiverion::test
