#include "macro/run_driver.h"

#include "field/formats/load_original_file.h"
#include "platform/files/paths.h"
#include "run_fixture.h"
#include "support/approved.h"

namespace quiverion::test {
namespace {

class RunDriver : public RunTest {
 protected:
  void AddTwoFiles(const samples::SampleField& a, const samples::SampleField& b) {
    AddFile("a.vas", samples::VasBytes(a));
    AddFile("b.vas", samples::VasBytes(b));
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
  AddTwoFiles(SmallSample(0), SmallSample(1));
  struct Case {
    int abortAt, yields;  // an abort requested after a title takes effect at the first command
    std::int32_t filesDone;
  };
  std::string told;
  for (const Case& c : {Case{1, 2, 0}, {3, 3, 0}, {5, 6, 1}, {8, 8, 1}, {9, 8, 2}}) {
    ui.yields = 0;
    ui.abortAtYield = c.abortAt;
    told += RunLogOf({Event(50101), Event(50103), Event(50004, {{"Checked", true}})}) + "\r\n";
    EXPECT_EQ(ui.yields, c.yields) << c.abortAt;
    EXPECT_EQ(ui.progress.back().filesDone, c.filesDone) << c.abortAt;
    EXPECT_EQ(program.context.userAbortRequested, c.abortAt < 9);
  }
  ExpectApproved("aborted_runs.txt", told);
}

TEST_F(RunDriver, TheBufferLivesOnFromFileToFileAndFromRunToRun) {
  AddFile("a.vas", samples::VasBytes(SmallSample(0)));
  RunLogOf({Event(20001)});
  session.selectedFiles = {"b.vas"};
  files["/serie/b.vas"] = samples::VasBytes(SmallSample(1));
  RunLogOf({Event(20005), SaveEvent("", "_d")});
  const VectorField a = FieldIn("/serie/a.vas"), b = FieldIn("/serie/b.vas"), difference = FieldIn("/serie/b_d.vas");
  for (std::int32_t i = 1; i <= a.columnCount; ++i) {
    const bool valid = a.status(i, 1) > 0 && b.status(i, 1) > 0;
    EXPECT_EQ(difference.velX(i, 1), valid ? b.velX(i, 1) - a.velX(i, 1) : b.velX(i, 1));
  }
}

TEST(RunDuration, IsWrittenInMinutesAndSeconds) {
  const std::pair<float, const char*> cases[] = {{3.25f, "3.25 s"},     {59.96f, "59.96 s"},
                                                 {60.0f, "1 min 0 s"},  {119.7f, "1 min 59.7 s"},
                                                 {0.00005f, "5E-05 s"}, {12345.678f, "205 min 45.67773 s"}};
  for (const auto& [seconds, text] : cases)
    EXPECT_EQ(DurationText(seconds), "\r\nDauer: " + std::string(text) + "\r\n");
  for (const float seconds : {0.0f, -1.0f, -86390.0f}) EXPECT_EQ(DurationText(seconds), "");
}

TEST_F(RunDriver, GivesUpAFileWhoseCommandFails) {
  samples::SampleField collapsed = SmallSample();
  collapsed.gridStep = 0;  // all positions are equal
  AddTwoFiles(collapsed, collapsed);
  std::string told;
  for (const MacroEvent& broken : {Event(10002), Event(10001, {{"Prefix", std::string()}}),
                                   Event(50006, {{"Value", std::string("1e400")}}), Event(50106)}) {
    told += RunLogOf({Event(50103), broken, SaveEvent("", "_x")}) + "\r\n";
    EXPECT_EQ(files.size(), 2u) << "nothing is saved";
  }
  ExpectApproved("failing_commands.txt", told);
}

TEST_F(RunDriver, DoesNothingForMenusAndUnknownIds) {
  AddFile("a.vas", samples::VasBytes(SmallSample()));
  const std::string log = RunLogOf({Event(50101)});
  EXPECT_EQ(RunLogOf({Event(12345), Event(10000), Event(50100), Event(-1), Event(50101)}), log);
  EXPECT_EQ(ui.yields, 2 + 6);
  program.clock.times = {10.0f, 13.25f};
  EXPECT_EQ(RunLogOf({Event(50101)}), log + "\r\nDauer: 3.25 s\r\n") << "from its beginning to its end";
}

TEST_F(RunDriver, ShowsTheErrorFromTheFirstCommandBehindIt) {
  AddFile(" a.vas ", samples::VasBytes(SmallSample()));  // the name is shown without the blanks
  session.selectedFiles.back() = " a.vas";
  files["/serie/ a.vas"] = files["/serie/ a.vas "];
  Select("b.vas");
  AddFile("c.vas", samples::VasBytes(SmallSample()));
  std::string told = RunLogOf({Event(50101), Event(50102)});
  for (const RunProgress& p : ui.progress) {
    told += std::to_string(p.currentFile) + "/" + std::to_string(p.fileCount) + " " + p.fileName + ", done " +
            std::to_string(p.filesDone) + ", bad " + std::to_string(p.filesWithErrors) +
            (p.errorOccurred ? ", error: " : ": ") + std::string(p.event) + "\n";
  }
  ExpectApproved("run_progress.txt", told);
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
    RunLogOf({Event(10002, {{"Comment", std::string("neu")}}), SaveEvent(c.prefix, c.postfix)});
    EXPECT_EQ(files.size(), c.name == c.output ? 1u : 2u) << c.output;
    ASSERT_TRUE(files.contains("/serie/" + c.output)) << c.output;
    EXPECT_TRUE(FieldIn("/serie/" + c.output).infoText.ends_with("\r\nneu\r\n"));
  }
}

}  // namespace
}  // namespace quiverion::test
