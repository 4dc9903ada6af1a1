#include "macro/pre_run_checks.h"

#include "run_fixture.h"
#include "support/approved.h"

namespace quiverion::test {
namespace {

using enum MessageAnswer;

constexpr std::uint64_t kKilobyte = 1024;

class PreRun : public RunTest {
 protected:
  PreRun() { AddFile("a.vas", "x"); }
  ~PreRun() override {
    const auto* const test = testing::UnitTest::GetInstance()->current_test_info();
    ExpectApproved(std::string("pre_run_") + test->name() + ".txt", told);
  }

  bool Check(MacroEventList macro, std::deque<MessageAnswer> answers = {}) {
    session.macro = std::move(macro);
    ui.answers = std::move(answers);
    const bool passes = PreRunChecks(session);
    told += ui.TakeBoxes() + (passes ? "= passes\n" : "= refused\n");
    return passes;
  }

  std::string told;
};

TEST_F(PreRun, WantsFilesFirstAndThenCommands) {
  session.selectedFiles.clear();
  EXPECT_FALSE(StartRun(session));
  Select("a.vas");
  EXPECT_FALSE(StartRun(session));
  told = ui.TakeBoxes() + program.TakeLog();
  EXPECT_EQ(ui.yields, 0);
}

TEST_F(PreRun, AsksForEveryFileThatCannotBeOpened) {
  Select("weg.vas");
  Select("zu.vas");
  files["/serie/zu.vas"] = "x";
  program.files.openErrors["/serie/zu.vas"] = ErrorNumber::accessDenied;
  for (const auto& answers : {std::deque{abort}, {ignore, abort}, {retry, ignore, ignore}})
    Check({Event(40103)}, answers);
  const auto load = [](const std::string& name) { return Event(20002, {{"FileName", name}}); };
  session.selectedFiles = {"a.vas"};
  Check({load("/serie/a.vas"), load("C:\\weg.vec"), Event(40103), load("/auch weg.dat"), load("/nie")},
        {retry, ignore, abort});
}

TEST_F(PreRun, RefusesACdOnlyWhereSomethingIsWritten) {
  program.files.drive = DriveKind::cdRom;
  program.files.freeBytes = {0};
  EXPECT_TRUE(Check({Event(40103), Event(60001, {{"FileName", std::string("/c.col")}}), Event(10002)}));
  EXPECT_FALSE(Check({Event(40103), Event(10104)}));
}

TEST_F(PreRun, AsksForDiskSpaceUntilItIsThere) {
  Select("a.vas");
  const std::pair<MacroEventList, std::uint64_t> cases[] = {
      {{Event(10001), Event(10001), Event(40103)}, 360},
      {{Event(10101), Event(10102), Event(10103), Event(10104), Event(10201), Event(10202), Event(10301), Event(10302)},
       3220},
      {{Event(70101), Event(70102), Event(70103)}, 3560}};
  for (const auto& [macro, needed] : cases) {
    program.files.freeBytes = {needed * kKilobyte};
    EXPECT_TRUE(Check(macro)) << needed;
    program.files.freeBytes = {needed * kKilobyte - 1};
    EXPECT_FALSE(Check(macro, {abort})) << needed;
  }
  const std::pair<std::deque<MessageAnswer>, std::vector<std::uint64_t>> spaces[] = {
      {{abort}, {1536 * kKilobyte + 512}},
      {{ignore}, {0}},
      {{retry, retry}, {0, 100 * kKilobyte + 1, 1180 * kKilobyte}},
      {{retry, abort}, {kKilobyte, 1179 * kKilobyte}}};
  for (const auto& [answers, freeBytes] : spaces) {
    program.files.freeBytes = freeBytes;
    Check({Event(10001), Event(10101)}, answers);
  }
}

TEST_F(PreRun, NamesTheDriveInUpperCase) {
  files["d:/piv/a.vas"] = "x";
  session.inputDirectory = "d:\\piv\\";
  program.files.freeBytes = {0};
  EXPECT_FALSE(Check({Event(10001)}, {abort}));
}

}  // namespace
}  // namespace quiverion::test
