#include "app/statistics_flow.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "generator/sample_files.h"
#include "support/approved.h"
#include "support/scripted_dialogs.h"
#include "support/test_session.h"

namespace quiverion {
namespace {

class StatisticsFlow : public testing::Test {
 protected:
  StatisticsFlow() {
    samples::SampleOptions options{.columns = 4, .rows = 3};
    program.files.files["/c/Serie1.col"] =
        samples::CollectionBytes({samples::MakeSampleField(options), samples::MakeSampleField(options)}, {"a", "b"});
  }
  bool Run(StatisticKind kind) {
    const auto texts = std::ranges::find(AllStatisticTexts(), kind, &StatisticTexts::kind);
    return StatisticsCommandFlow(program.context, dialogs, *texts, "/mess", {});
  }

  test::TestSession program;
  test::ScriptedDialogs dialogs;
};

TEST_F(StatisticsFlow, EveryItemSaysWhatItComputesAndProposesAName) {
  std::string told;
  const auto run = [&](StatisticKind kind, std::deque<std::string> texts, std::deque<std::string> files) {
    dialogs.texts = std::move(texts);
    dialogs.files = std::move(files);
    const bool done = Run(kind);
    told += dialogs.TakeQuestions() + program.ui.TakeBoxes() + (done ? "= done\n\n" : "= not done\n\n");
    EXPECT_EQ(program.files.files.erase("/c/out.vas"), done ? 1u : 0u);
  };
  for (const StatisticTexts& item : AllStatisticTexts()) run(item.kind, {"15E-6"}, {"/c/Serie1.dat", "/c/out.X"});
  for (const char* viscosity : {"abc", "-25E-6", "0", "1E999"}) {
    run(StatisticKind::dissipation, {viscosity}, {"/c/Serie1"});
  }
  run(StatisticKind::dissipation, {"1,5E-5"}, {"/c/Serie1"});  // the output dialog is cancelled
  test::ExpectApproved("statistics_flow.txt", told);
}

}  // namespace
}  // namespace quiverion
