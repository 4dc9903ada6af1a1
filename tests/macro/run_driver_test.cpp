#include "macro/run_driver.h"

#include <tuple>

#include "field/load_original_file.h"
#include "platform/paths.h"
#include "run_fixture.h"
#include "support/slashes.h"

namespace quiverion::test {
namespace {

std::string Line(std::size_t left, const std::string& text, std::size_t right) {
  return std::string(left, '-') + " " + text + " " + std::string(right, '-') + "\r\n";
}

const std::string kTitleA = Line(47, "a.vas", 47);
const std::string kTitleB = Line(47, "b.vas", 47);
const std::string kLoadA = "Orginaldatei '/serie/a.vas' einladen... fertig\r\n";
const std::string kLoadB = "Orginaldatei '/serie/b.vas' einladen... fertig\r\n";
const std::string kSuccess = Line(32, "Makro-Ausführung erfolgreich beendet", 31);
const std::string kFaulty = Line(32, "Makro-Ausführung FEHLERHAFT beendet", 32);
const std::string kAborted = Line(30, "Makro-Ausführung frühzeitig ABGEBROCHEN", 30);
const std::string kAbortedAfterError = Line(24, "Makro-Ausführung frühzeitig ABGEBROCHEN nach FEHLER", 24);
const std::string kNoBackground = "'Keinen Hintergrund im Vektorfeld anzeigen' gewählt\r\n";
const std::string kVorticity = "'Vorticity als Hintergrund im Vektorfeld anzeigen' gewählt\r\n";
const std::string kComment = "Kommentar in Info-Text einfügen... fertig\r\n";
MacroEvent Comment(const std::string& text) {
  return Event(10002, {{"Comment", text}});
}

class RunDriver : public RunTest {
 protected:
  void AddTwoFiles() {
    AddFile("a.vas", samples::VasBytes(SmallSample(0)));
    AddFile("b.vas", samples::VasBytes(SmallSample(1)));
  }
  VectorField FieldIn(const std::string& path) {
    TestSession reader;
    reader.files.files = files;
    LoadOriginalFile(reader.context, path);
    EXPECT_FALSE(reader.context.abortCurrentFile) << path;
    return reader.context.field;
  }
};

TEST_F(RunDriver, EndsAtTheYieldWhereTheAbortWasAskedFor) {
  AddTwoFiles();
  const MacroEventList macro = {Event(50101), Event(50103), Event(50004, {{"Checked", true}})};
  const std::string commands[] = {kNoBackground, kVorticity, "'Koordinatensystem anzeigen' eingeschaltet\r\n"};
  const std::string all = commands[0] + commands[1] + commands[2];
  struct Case {
    int abortAt;
    int yields;  // an abort behind a title is noticed at the first command only
    std::string log;
    std::int32_t filesDone;
  };
  const Case cases[] = {{1, 2, kTitleA + kLoadA + kAborted, 0},
                        {3, 3, kTitleA + kLoadA + commands[0] + kAborted, 0},
                        {5, 6, kTitleA + kLoadA + all + kTitleB + kLoadB + kAborted, 1},
                        {8, 8, kTitleA + kLoadA + all + kTitleB + kLoadB + commands[0] + commands[1] + kAborted, 1},
                        {9, 8, kTitleA + kLoadA + all + kTitleB + kLoadB + all + kSuccess, 2}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.abortAt);
    ui.yields = 0;
    ui.abortAtYield = c.abortAt;
    EXPECT_EQ(RunLogOf(macro), c.log);
    EXPECT_EQ(ui.yields, c.yields);
    EXPECT_EQ(ui.progress.back().filesDone, c.filesDone);
    EXPECT_EQ(program.context.userAbortRequested, c.abortAt < 9);
  }
}

TEST_F(RunDriver, TheBufferLivesOnFromFileToFileAndFromRunToRun) {
  AddFile("a.vas", samples::VasBytes(SmallSample(0)));
  RunLogOf({Event(20001)});
  session.selectedFiles = {"b.vas"};
  files["/serie/b.vas"] = samples::VasBytes(SmallSample(1));
  const std::string subtracted = "Buffer vom Vektorfeld subtrahieren... fertig\r\n";
  EXPECT_EQ(RunLogOf({Event(20005), SaveEvent("", "_d")}),
            kTitleB + kLoadB + subtracted + "Datei speichern unter '/serie/b_d.vas'... fertig\r\n" + kSuccess);
  const VectorField a = FieldIn("/serie/a.vas"), b = FieldIn("/serie/b.vas"), difference = FieldIn("/serie/b_d.vas");
  for (std::int32_t i = 1; i <= a.columnCount; ++i) {
    const bool valid = a.status(i, 1) > 0 && b.status(i, 1) > 0;
    EXPECT_EQ(difference.velX(i, 1), valid ? b.velX(i, 1) - a.velX(i, 1) : b.velX(i, 1));
  }
}

TEST(RunDuration, IsWrittenInMinutesAndSeconds) {
  const std::pair<float, const char*> cases[] = {{3.25f, "3.25 s"},
                                                 {59.96f, "59.96 s"},
                                                 {60.0f, "1 min 0 s"},
                                                 {119.7f, "1 min 59.7 s"},
                                                 {3725.75f, "62 min 5.75 s"},
                                                 {0.00005f, "5E-05 s"},
                                                 {12345.678f, "205 min 45.67773 s"}};
  for (const auto& [seconds, text] : cases)
    EXPECT_EQ(DurationText(seconds), "\r\nDauer: " + std::string(text) + "\r\n");
  for (const float seconds : {0.0f, -1.0f, -86390.0f}) EXPECT_EQ(DurationText(seconds), "");
}

TEST_F(RunDriver, GivesUpAFileWhoseCommandFails) {
  samples::SampleField collapsed = SmallSample();
  collapsed.gridStep = 0;  // all positions are equal
  AddFile("a.vas", samples::VasBytes(collapsed));
  AddFile("b.vas", samples::VasBytes(collapsed));
  const std::string invalidCall = "    Ungültiger Prozeduraufruf oder ungültiges Argument";
  const std::tuple<MacroEvent, std::string, std::string> cases[] = {
      {Event(10002), "", invalidCall + "   (Fehler-Nr. 5)\r\n"},
      {Event(10001, {{"Prefix", std::string()}}), "", invalidCall + "   (Fehler-Nr. 5)\r\n"},
      {Event(50006, {{"Value", std::string("1e400")}}), "", "    Überlauf   (Fehler-Nr. 6)\r\n"},
      {Event(50106), "Optimale Werte für Farbpalette automatisch suchen... ",
       "    Division durch Null   (Fehler-Nr. 11)\r\n"}};
  for (const auto& [broken, announcement, line] : cases) {
    const std::string failed = kVorticity + announcement + "!!! FEHLER !!!\r\n" + line;
    EXPECT_EQ(RunLogOf({Event(50103), broken, SaveEvent("", "_x")}),
              kTitleA + kLoadA + failed + kTitleB + kLoadB + failed + kFaulty);
    EXPECT_EQ(files.size(), 2u) << "nothing is saved";
  }
}

TEST_F(RunDriver, DoesNothingForMenusAndUnknownIds) {
  AddFile("a.vas", samples::VasBytes(SmallSample()));
  EXPECT_EQ(RunLogOf({Event(12345), Event(10000), Event(50100), Event(-1), Event(50101)}),
            kTitleA + kLoadA + kNoBackground + kSuccess);
  EXPECT_EQ(ui.yields, 6);
  program.clock.times = {10.0f, 13.25f};
  EXPECT_TRUE(RunLogOf({Event(50101)}).ends_with("\r\nDauer: 3.25 s\r\n")) << "from its beginning to its end";
}

std::string Shown(const RunProgress& p) {
  return std::to_string(p.currentFile) + "/" + std::to_string(p.fileCount) + " " + p.fileName + ", done " +
         std::to_string(p.filesDone) + (p.errorOccurred ? ", error: " : ": ") + std::string(p.event);
}

TEST_F(RunDriver, ShowsTheErrorFromTheFirstCommandBehindIt) {
  AddFile(" a.vas ", samples::VasBytes(SmallSample()));  // the name is shown without the blanks
  session.selectedFiles.back() = " a.vas";
  files["/serie/ a.vas"] = files["/serie/ a.vas "];
  Select("b.vas");
  AddFile("c.vas", samples::VasBytes(SmallSample()));
  const std::string log = RunLogOf({Event(50101), Event(50102)});
  EXPECT_TRUE(log.starts_with(kTitleA + "Orginaldatei '/serie/ a.vas' einladen... fertig\r\n")) << log;
  const std::string load = "Laden der Orginaldatei", first = "Keinen Hintergrund im Vektorfeld anzeigen",
                    second = "(Swirling Strength)² im Vektorfeld als Hintergrund anzeigen";
  std::vector<std::string> shown;
  for (const RunProgress& p : ui.progress) shown.push_back(Shown(p));
  EXPECT_EQ(shown, (std::vector<std::string>{
                       "1/3 a.vas, done 0: " + load, "1/3 a.vas, done 0: " + first, "1/3 a.vas, done 0: " + second,
                       "1/3 a.vas, done 1: " + second, "2/3 b.vas, done 1: " + load, "2/3 b.vas, done 2: " + load,
                       "3/3 c.vas, done 2: " + load, "3/3 c.vas, done 2, error: " + first,
                       "3/3 c.vas, done 2, error: " + second, "3/3 c.vas, done 3, error: " + second}));
}

TEST_F(RunDriver, ComposesTheOutputPath) {
  struct Case {
    std::string name, prefix, postfix, output;
  };
  const Case cases[] = {{"a.b.vas", "", "", "a.b.vas"},
                        {"a.vas", "neu/tief\\x_", "", "neu/tief/x_a.vas"},
                        {"a.vas", "", ".v2", "a.v2.vas"}};
  for (const Case& c : cases) {
    session.selectedFiles.clear();
    files.clear();
    program.files.directories.clear();
    AddFile(c.name, samples::VasBytes(SmallSample()));
    const std::string log = test::WithSlashes(RunLogOf({Comment("neu"), SaveEvent(c.prefix, c.postfix)}));
    EXPECT_NE(log.find("Datei speichern unter '/serie/" + c.output + "'... fertig\r\n" + kSuccess), std::string::npos)
        << log;
    EXPECT_EQ(files.size(), c.name == c.output ? 1u : 2u) << c.output;
    ASSERT_TRUE(files.contains("/serie/" + c.output)) << c.output;
    EXPECT_TRUE(FieldIn("/serie/" + c.output).infoText.ends_with("\r\nneu\r\n"));
  }
}

}  // namespace
}  // namespace quiverion::test
