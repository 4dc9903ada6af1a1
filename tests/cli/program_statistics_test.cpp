// quiverionseries-cli collects and computes the same as the core.
#include "cli/program_run.h"
#include "statistics/compute_statistic.h"
#include "support/test_session.h"

namespace quiverion::cli {
namespace {

TEST_F(ProgramRun, CollectsAndComputesEveryKindOfStatistic) {
  place.Write("m.mak", test::Bytes().I32(1).I32(60001).Text("c.col"));
  std::vector<samples::SampleField> fields;
  std::vector<std::string> paths;
  for (int k = 1; k <= 4; ++k) {
    fields.push_back(Sample(k));
    paths.push_back(place.At("reihe/" + std::to_string(k) + ".vas"));
    place.Write("reihe/" + std::to_string(k) + ".vas", samples::VasBytes(fields.back()));
  }
  EXPECT_EQ(RunProgram(place, {"run", "--macro", "m.mak", "reihe"}).code, 0);
  EXPECT_TRUE(place.Read("c.col") == samples::CollectionBytes(fields, paths));
  test::TestSession core;
  core.files.files["c.col"] = place.Read("c.col");
  const char* const kinds[] = {"mean", "stddev", "squares", "product", "turbulence", "dissipation"};
  for (std::size_t kind = 0; kind < std::size(kinds); ++kind) {
    const Outcome outcome = RunProgram(place, {"statistics", kinds[kind], "c.col", "r.VAS", "--viscosity", "15E-6"});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_TRUE(ComputeStatistic(core.context, static_cast<StatisticKind>(kind), "c.col", "r.vas", 15E-6));
    const std::string& expected = core.files.files["r.vas"];
    const std::size_t date = expected.find(core.clock.DateAndTime()) - 4;  // with its length, which the system decides
    const auto withoutDate = [date](std::string bytes) {
      return bytes.erase(date, 4 + static_cast<unsigned char>(bytes.at(date)));
    };
    EXPECT_TRUE(withoutDate(place.Read("r.VAS")) == withoutDate(expected)) << kinds[kind];
  }
}

}  // namespace
}  // namespace quiverion::cli
