// Cases that exist only on systems with signals, devices and names of arbitrary bytes.
#include <csignal>
#include <nlohmann/json.hpp>

#include "cli/program_run.h"
#include "support/stalled_program.h"

namespace quiverion::cli {
namespace {

TEST_F(ProgramRun, FailsWhereStandardOutputIsFull) {
  EXPECT_EQ(RunProgram(place, {"run", "--macro", "s.mak", "serie"}, "", "/dev/full").code, 1);
  EXPECT_EQ(RunProgram(place, {"commands"}, "", "/dev/full").code, 1);
  EXPECT_TRUE(place.Has("serie/b_s.vas")) << "the run itself goes on";
}

// Names that are not valid text, or that must be quoted on a command line.
TEST_F(ProgramRun, TakesFileNamesOfAnyBytes) {
  for (const std::string name : {"caf\xE9", "it's \"quoted\"", "tab\there"}) TakesFile(name);
  const Outcome info = RunProgram(place, {"info", "--json", "Reihe ä/caf\xE9.vas"});
  EXPECT_TRUE(nlohmann::json::accept(info.out)) << info.out;
}

// As nohup and shells without a terminal expect.
TEST_F(ProgramSignals, DoNothingWhereTheyWereIgnoredBefore) {
  std::signal(SIGHUP, SIG_IGN);
  StalledProgram program(place, {"run", "--macro", "s.mak", "viele"});
  std::signal(SIGHUP, SIG_DFL);
  ASSERT_TRUE(program.WaitUntilStalled());
  program.Signal(SIGHUP);
  EXPECT_EQ(program.Finish().code, 0);
}

}  // namespace
}  // namespace quiverion::cli
