#include "field/vas_image.h"
#include "platform/text.h"

namespace quiverion::test {
namespace {

using VasFaults = FieldTest;

TEST_F(VasFaults, AFileOfAnotherKindIsRefused) {
  VasImage image;
  for (const std::string magic : {"quiverion", "QUIVERION", "Quiverio ", "\0\0\0\0\0\0\0\0\0"}) {
    image.magic = magic;
    image.magic.resize(9);
    EXPECT_EQ(Load("in.vas", image.Build()), LoadRefused("in.vas", "    Dies ist keine gültige VAS-Datei!"));
    EXPECT_FALSE(context_.runHadError) << "the driver marks the run";
  }
}

TEST_F(VasFaults, AFileThatEndsEarlyIsAReadErrorAtEveryLength) {
  const std::string bytes = VasImage().Build();
  for (std::size_t length = 0; length < bytes.size(); ++length) {
    ASSERT_EQ(Load("in.vas", bytes.substr(0, length)), ReadFailed("in.vas", 62)) << length;
  }
  EXPECT_EQ(Load("in.vas", bytes), Loaded("in.vas"));
  // Shortened by somebody else after its size was known.
  for (std::size_t length = 0; length < bytes.size(); ++length) {
    ShrunkFile file(bytes.substr(0, length), bytes.size());
    ASSERT_EQ(ErrorOf([&] { ReadVas(context_, file); }), 62) << length;
  }
}

// Large enough for blocks that go straight into their place.
VasImage LargeImage() {
  VasImage image;
  image.geometry[10] = 40;
  image.geometry[11] = 30;
  image.posX.resize(40);
  image.posY.resize(30);
  image.velX.resize(1200);
  image.velY.resize(1200);
  image.status.resize(1200);
  return image;
}

TEST_F(VasFaults, EarlyEndsAndReadErrorsInLargeFilesAreFound) {
  const std::string bytes = LargeImage().Build();
  EXPECT_EQ(Load("in.vas", bytes), Loaded("in.vas"));
  for (std::size_t at = 0; at < bytes.size(); at += at % 4096 < 40 ? 1 : 97) {
    files_.readFailsAt.clear();
    ASSERT_EQ(Load("in.vas", bytes.substr(0, at)), ReadFailed("in.vas", 62)) << at;
    ShrunkFile file(bytes.substr(0, at), bytes.size());
    ASSERT_EQ(ErrorOf([&] { ReadVas(context_, file); }), 62) << at;
    files_.readFailsAt["in.vas"] = at;
    ASSERT_EQ(Load("in.vas", bytes), ReadFailed("in.vas", 57)) << at;
  }
}

TEST_F(VasFaults, CountsAreCheckedBeforeMemoryIsTaken) {
  const auto changed = [](auto change) {
    VasImage image;
    change(image);
    return image.Build();
  };
  // Replaces the four bytes of a text count.
  const auto withCount = [](std::string_view before, std::int32_t count) {
    std::string bytes = VasImage().Build();
    bytes.replace(bytes.find(before), 4, Bytes().I32(count).Get());
    return bytes;
  };
  const std::string firstText = Bytes().Text("24.11.03").Get().substr(4);
  const auto headerCount = [&](std::int32_t count) {
    std::string bytes = VasImage().Build();
    return bytes.replace(bytes.find(firstText) - 4, 4, Bytes().I32(count).Get());
  };
  const auto grid = [&](std::int32_t columns, std::int32_t rows) {
    return changed([&](VasImage& image) { image.geometry[10] = columns, image.geometry[11] = rows; });
  };
  const auto streamlines = [&](std::int32_t count) {
    return changed([&](VasImage& image) { image.streamlineCount = count; });
  };
  const std::int32_t most = 2147483647;
  const std::string infoCount = Bytes().Text(VasImage().info).Get().substr(0, 12);
  struct Case {
    std::string bytes;
    int number;
  };
  const Case cases[] = {{headerCount(-1), 5},
                        {headerCount(-most - 1), 5},
                        {headerCount(most), 62},
                        {headerCount(100000), 62},
                        {withCount(infoCount, most), 62},
                        {withCount(infoCount, -5), 5},
                        {grid(0, 2), 9},
                        {grid(3, 0), 9},
                        {grid(-3, -2), 9},
                        {grid(most, most), 62},
                        {grid(most, 1), 62},
                        {grid(1, most), 62},
                        {grid(16384, 16384), 62},
                        {grid(65536, 65536), 62},            // 2^32 points
                        {grid(1 << 30, 1 << 30), 62},        // 20 bytes for each do not fit 64 bits
                        {grid(2144933926, 1720029120), 62},  // which leaves 304 bytes
                        {streamlines(-1), 5},
                        {streamlines(-most - 1), 5}};
  const long before = PeakMemory();
  for (const Case& c : cases) EXPECT_EQ(Load("in.vas", c.bytes), ReadFailed("in.vas", c.number));
  EXPECT_EQ(Load("in.vas", streamlines(most)),
            Loading("in.vas") + "!!! WARNUNG !!!\r\n    Es können nicht alle Stromlinien eingelesen werden!\r\n" +
                ReadFailed("in.vas", 62).substr(Loading("in.vas").size()));
  EXPECT_LT(PeakMemory() - before, 50 * 1024);
}

TEST_F(VasFaults, AFileThatCannotBeOpenedIsNamedWithItsError) {
  const std::string sentence =
      "    Die aktuelle Datei kann nicht geöffnet werden, da folgender Fehler aufgetreten ist:\r\n";
  files_.openErrors["locked.vas"] = ErrorNumber::accessDenied;
  const std::pair<std::string, int> cases[] = {{"gone.vas", 53}, {"gone/a.dat", 76}, {"locked.vas", 70}, {"a.VEC", 53}};
  for (const auto& [path, number] : cases) {
    EXPECT_EQ(LoadExisting(path), LoadRefused(path, sentence + ErrorTextOf(number)));
    EXPECT_FALSE(context_.runHadError);
  }
}

constexpr std::string_view kOpenFailed =
    "!!! FEHLER !!!\r\n"
    "    Die aktuelle Datei kann nicht gespeichert werden, da beim Öffnen folgender Fehler aufgetreten "
    "ist:\r\n";

std::string WriteFailed(const std::string& path, int number) {
  return "Datei speichern unter '" + path + "'... !!! FEHLER !!!\r\n    Die Datei '" + path +
         "' kann nicht gespeichert werden, da während des Schreibens folgender Fehler aufgetreten ist:\r\n" +
         ErrorTextOf(number) + "\r\n";
}

class VasSaveFaults : public FieldTest {
 protected:
  VasSaveFaults() { field_ = FieldOfImage(); }
};

TEST_F(VasSaveFaults, OnlyTheExtensionVasIsWritten) {
  for (const std::string path : {"new/a.vasx", "new/a.txt", "new/vas", "vas", "", "new/a.vas "}) {
    EXPECT_EQ(Save(path), "Datei speichern unter '" + path + "'... !!! FEHLER !!!\r\n    Unbekanntes Dateiformat!\r\n");
    EXPECT_TRUE(context_.runHadError);
  }
  EXPECT_TRUE(files_.files.empty());
  for (const std::string path : {"a.vas", "a.VAS", "a.txt.vAs", "b/c/d/a.vas", ".vas"}) {
    EXPECT_EQ(Save(path), "Datei speichern unter '" + path + "'... fertig\r\n");
    EXPECT_EQ(files_.files.count(path), 1u) << "missing directories are created";
  }
}

TEST_F(VasSaveFaults, AFileThatCannotBeCreatedIsAnError) {
  files_.faults.open = ErrorNumber::accessDenied;
  EXPECT_EQ(Save("a.vas"), "Datei speichern unter 'a.vas'... " + std::string(kOpenFailed) + ErrorTextOf(70) + "\r\n");
  EXPECT_TRUE(context_.runHadError);
  EXPECT_FALSE(context_.userAbortRequested);
}

TEST_F(VasSaveFaults, CancelOnAFullDiskKeepsTheOldFileAndEndsTheRun) {
  const std::string bytes = VasImage().Build();
  for (std::size_t room = 0; room < bytes.size(); room += 13) {
    files_.files["a.vas"] = "old";
    files_.faults.diskSize = room;
    program_.ui.answers = {MessageAnswer::retry, MessageAnswer::cancel};
    EXPECT_EQ(Save("a.vas"), WriteFailed("a.vas", 61));
    EXPECT_EQ(files_.files["a.vas"], "old");
    EXPECT_TRUE(context_.runHadError);
    EXPECT_TRUE(context_.userAbortRequested);
  }
}

TEST_F(VasSaveFaults, RetryOnAFullDiskWritesTheSameFile) {
  Load("in.vas", LargeImage().Build());
  Save("whole.vas");
  program_.ui.defaultAnswer = MessageAnswer::retry;
  program_.ui.onAsk = [&](const Message&) { files_.faults.diskSize = 1009; };
  for (const std::uint64_t room : {0u, 1u, 1000u, 20000u}) {
    files_.faults.diskSize = room;
    EXPECT_EQ(Save("a.vas"), "Datei speichern unter 'a.vas'... fertig\r\n");
    EXPECT_FALSE(context_.runHadError);
    EXPECT_TRUE(files_.files["a.vas"] == files_.files["whole.vas"]) << room;
  }
}

TEST_F(VasSaveFaults, OtherWriteErrorsAreNotAskedAbout) {
  files_.files["a.vas"] = "old";
  files_.faults.diskSize = 100;
  files_.faults.write = ErrorNumber::deviceError;
  EXPECT_EQ(Save("a.vas"), WriteFailed("a.vas", 57));
  files_.faults = {};
  files_.faults.commit = ErrorNumber::pathAccess;
  EXPECT_EQ(Save("a.vas"), WriteFailed("a.vas", 75));
  EXPECT_TRUE(context_.runHadError);
  EXPECT_FALSE(context_.userAbortRequested);
  EXPECT_TRUE(program_.ui.messages.empty());
  EXPECT_EQ(files_.files["a.vas"], "old");
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
