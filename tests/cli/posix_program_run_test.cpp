// What only systems with signals, devices and names of any bytes show.
#include <csignal>
#include <nlohmann/json.hpp>

#include "cli/program_run.h"
#include "support/posix_processes.h"

namespace quiverion::cli {
namespace {

TEST_F(ProgramRun, FailsWhereStandardOutputIsFull) {
  EXPECT_EQ(RunProgram(place, {"run", "--macro", "s.mak", "serie"}, "", "/dev/full").code, 1);
  EXPECT_EQ(RunProgram(place, {"commands"}, "", "/dev/full").code, 1);
  EXPECT_TRUE(place.Has("serie/b_s.vas")) << "the run itself goes on";
}

// Names of bytes that are no text, or that a command line has to quote.
TEST_F(ProgramRun, TakesFileNamesOfAnyBytes) {
  for (const std::string name : {"caf\xE9", "it's \"quoted\"", "tab\there"}) TakesFile(name);
  const Outcome info = RunProgram(place, {"info", "--json", "Reihe ä/caf\xE9.vas"});
  EXPECT_TRUE(nlohmann::json::accept(info.out)) << info.out;
}

class ProgramSignals : public ProgramRun {
 protected:
  ProgramSignals() {
    for (int k = 10; k < 50; ++k) place.Write("viele/" + std::to_string(k) + ".vas", samples::VasBytes(Sample(k)));
  }
};

// A connection that is dropped (SIGHUP) cost the log and left temporary files.
TEST_F(ProgramSignals, EndTheRunBehindTheRunningCommand) {
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    StalledProgram program(place, {"run", "--macro", "s.mak", "--log", "log.txt", "viele"});
    ASSERT_TRUE(program.WaitUntilStalled());
    program.Signal(signal);
    const Outcome outcome = program.Finish();
    EXPECT_EQ(outcome.code, 3);
    EXPECT_NE(outcome.out.find("--- Makro-Ausführung frühzeitig ABGEBROCHEN ---"), std::string::npos) << outcome.out;
    EXPECT_EQ(outcome.out.find("49.vas"), std::string::npos) << "no further file is started";
    EXPECT_NE(place.Read("log.txt").find("ABGEBROCHEN"), std::string::npos);
    for (const std::string& name : place.Files()) {
      EXPECT_EQ(name.find(".tmp"), std::string::npos) << name;
      if (!name.ends_with("_s.vas")) continue;
      EXPECT_EQ(place.Read(name).size(), place.Read("viele/10.vas").size()) << name;
    }
  }
}

// As nohup and shells without a terminal want it.
TEST_F(ProgramSignals, DoNothingWhereTheyWereIgnoredBefore) {
  std::signal(SIGHUP, SIG_IGN);
  StalledProgram program(place, {"run", "--macro", "s.mak", "viele"});
  std::signal(SIGHUP, SIG_DFL);
  ASSERT_TRUE(program.WaitUntilStalled());
  program.Signal(SIGHUP);
  EXPECT_EQ(program.Finish().code, 0);
}

TEST_F(ProgramSignals, EndTheProgramAtOnceTheSecondTime) {
  StalledProgram program(place, {"run", "--macro", "s.mak", "viele"});
  ASSERT_TRUE(program.WaitUntilStalled());
  program.Signal(SIGINT);
  program.Signal(SIGTERM);
  EXPECT_EQ(program.Finish().signal, SIGTERM);
}

}  // namespace
}  // namespace quiverion::cli
