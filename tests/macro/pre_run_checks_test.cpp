#include "macro/pre_run_checks.h"

#include "platform/paths.h"
#include "run_fixture.h"

namespace quiverion::test {
namespace {

using enum MessageAnswer;

constexpr std::uint64_t kKilobyte = 1024;
const std::string kCannotOpen =
    "' kann nicht geöffnet werden!\r\nDatei nicht vorhanden, beschädigt oder wird bereits verwendet.";

class PreRun : public RunTest {
 protected:
  PreRun() { AddFile("a.vas", "x"); }

  void ExpectBox(std::size_t k, const std::string& title, const std::string& text,
                 MessageButtons buttons = MessageButtons::abortRetryIgnore, MessageIcon icon = MessageIcon::warning) {
    ASSERT_GT(ui.messages.size(), k);
    EXPECT_EQ(ui.messages[k].title, title);
    EXPECT_EQ(ui.messages[k].text, text);
    EXPECT_EQ(ui.messages[k].buttons, buttons);
    EXPECT_EQ(ui.messages[k].icon, icon);
  }
  void ExpectMissing(std::size_t k, const std::string& path) {
    ExpectBox(k, "QuiverionSeries  -  Fehler im Makro", "Die Datei '" + path + kCannotOpen);
  }
  void ExpectLowSpace(std::size_t k, const std::string& needed, const std::string& free,
                      const std::string& drive = "/") {
    ExpectBox(k, "QuiverionSeries  -  Wenig Festplattenspeicher",
              "Auf dem Laufwerk " + drive + ": ist eventuell zu wenig Speicherplatz frei!\r\n      Benötigt: " +
                  needed + " KB  (etwa)\r\n      Vorhanden: " + free +
                  " KB\r\n\r\nWenn die zu speichernden Dateien keine alten Dateien ersetzen, sondern vollkommen "
                  "neu "
                  "angelegt werden, können eventuell nicht alle Dateien gespeichert werden!Sie sollten erst etwas "
                  "Speicherplatz freimachen!");
  }
  bool Check(MacroEventList macro) {
    session.macro = std::move(macro);
    return PreRunChecks(session);
  }
};

TEST_F(PreRun, WantsFilesFirstAndThenCommands) {
  session.selectedFiles.clear();
  EXPECT_FALSE(StartRun(session));
  ExpectBox(0, "QuiverionSeries", "Sie müssen mindestens eine Datei auswählen!", MessageButtons::ok,
            MessageIcon::information);
  Select("a.vas");
  EXPECT_FALSE(StartRun(session));
  ExpectBox(1, "QuiverionSeries", "Sie müssen wenigstens einen Makrobefehl wählen!", MessageButtons::ok,
            MessageIcon::information);
  EXPECT_EQ(ui.messages.size(), 2u);
  EXPECT_EQ(program.TakeLog(), "");
  EXPECT_EQ(ui.yields, 0);
}

TEST_F(PreRun, AsksForEveryInputFileThatCannotBeOpened) {
  struct Case {
    std::deque<MessageAnswer> answers;
    bool passes;
    std::vector<std::string> boxes;
  };
  Select("weg.vas");
  Select("zu.vas");
  files["/serie/zu.vas"] = "x";
  program.files.openErrors["/serie/zu.vas"] = ErrorNumber::accessDenied;
  const std::string weg = "/serie/weg.vas", zu = "/serie/zu.vas";
  const Case cases[] = {
      {{abort}, false, {weg}}, {{ignore, abort}, false, {weg, zu}}, {{retry, ignore, ignore}, true, {weg, weg, zu}}};
  for (const Case& c : cases) {
    ui.messages.clear();
    ui.answers = c.answers;
    EXPECT_EQ(Check({Event(40103)}), c.passes);
    ASSERT_EQ(ui.messages.size(), c.boxes.size());
    for (std::size_t k = 0; k < c.boxes.size(); ++k) ExpectMissing(k, c.boxes[k]);
  }
}

TEST_F(PreRun, ChecksTheFilesForTheBuffer) {
  const auto load = [](const std::string& name) { return Event(20002, {{"FileName", name}}); };
  const std::string text = "Die in den Buffer einzuladende Datei '";
  ui.answers = {retry, ignore, abort};
  EXPECT_FALSE(Check({load("/serie/a.vas"), load("C:\\weg.vec"), Event(40103), load("/auch weg.dat"), load("/nie")}));
  ASSERT_EQ(ui.messages.size(), 3u);
  for (const std::size_t k : {0u, 1u}) {
    ExpectBox(k, "QuiverionSeries  -  Fehler im Makro", text + WithOwnSeparators("C:\\weg.vec") + kCannotOpen);
  }
  ExpectBox(2, "QuiverionSeries  -  Fehler im Makro", text + WithOwnSeparators("/auch weg.dat") + kCannotOpen);
}

TEST_F(PreRun, RefusesACdOnlyWhereSomethingIsWritten) {
  program.files.drive = DriveKind::cdRom;
  program.files.freeBytes = {0};
  EXPECT_TRUE(Check({Event(40103), Event(60001, {{"FileName", std::string("/c.col")}}), Event(10002)}));
  EXPECT_TRUE(ui.messages.empty());
  EXPECT_FALSE(Check({Event(40103), Event(10104)}));
  ASSERT_EQ(ui.messages.size(), 1u);
  ExpectBox(0, "QuiverionSeries  -  Fehler im Makro",
            "Dateien, die sich auf einer CD befinden, können nicht bearbeitet werden!", MessageButtons::ok);
}

TEST_F(PreRun, EstimatesWhatTheRunWrites) {
  Select("a.vas");
  const std::pair<MacroEventList, std::uint64_t> cases[] = {
      {{Event(10001), Event(10001), Event(40103)}, 360},
      {{Event(10101), Event(10102), Event(10103), Event(10104), Event(10201), Event(10202), Event(10301), Event(10302)},
       3220}};
  ui.defaultAnswer = abort;
  for (const auto& [macro, needed] : cases) {
    program.files.freeBytes = {needed * kKilobyte};
    EXPECT_TRUE(Check(macro)) << needed;
    program.files.freeBytes = {needed * kKilobyte - 1};
    EXPECT_FALSE(Check(macro)) << needed;
  }
}

TEST_F(PreRun, AsksForDiskSpaceWithNewNumbersUntilItIsThere) {
  struct Case {
    std::deque<MessageAnswer> answers;
    std::vector<std::uint64_t> freeBytes;
    bool passes;
    std::vector<std::string> shown;  // KB
  };
  const Case cases[] = {{{abort}, {1536 * kKilobyte + 512}, false, {"1536.5"}},
                        {{ignore}, {0}, true, {"0"}},
                        {{retry, retry}, {0, 100 * kKilobyte + 1, 1770 * kKilobyte}, true, {"0", "100.0009765625"}},
                        {{retry, abort}, {kKilobyte, 1769 * kKilobyte}, false, {"1", "1769"}}};
  Select("a.vas");
  Select("a.vas");
  for (const Case& c : cases) {
    ui.messages.clear();
    ui.answers = c.answers;
    program.files.freeBytes = c.freeBytes;
    EXPECT_EQ(Check({Event(10001), Event(10101)}), c.passes);
    ASSERT_EQ(ui.messages.size(), c.shown.size());
    for (std::size_t k = 0; k < c.shown.size(); ++k) ExpectLowSpace(k, "1770", c.shown[k]);
  }
}

TEST_F(PreRun, NamesTheDriveInUpperCase) {
  files["d:/piv/a.vas"] = "x";
  session.inputDirectory = "d:\\piv\\";
  program.files.freeBytes = {0};
  ui.answers = {abort};
  EXPECT_FALSE(Check({Event(10001)}));
  ExpectLowSpace(0, "90", "0", "D");
}

}  // namespace
}  // namespace quiverion::test
