// Names, arguments and paths as Windows users write them.
#include <algorithm>

#include "cli/program_run.h"
#include "support/stalled_program.h"

namespace quiverion::cli {
namespace {

// A log whose name differed only in case replaced the file of the vortices, and a file named in different case counted
// twice in the statistics.
TEST_F(ProgramRun, UpperAndLowerCaseNameTheSameFile) {
  const std::string macro =
      R"([{"EventId": "evtVortexCentres", "FileName": "neu.txt", "AutoTrafo": false},
          {"EventId": "evtCollectStatistics", "FileName": "k.col"}])";
  EXPECT_EQ(RunProgram(place, {"macro", "import", "-", "v.mak"}, macro).code, 0);
  for (const std::string log : {"NEU.TXT", "serie\\..\\Neu.txt"}) {
    EXPECT_EQ(RunProgram(place, {"run", "--macro", "v.mak", "--log", log, "serie"}).code, 2) << log;
  }
  EXPECT_EQ(RunProgram(place, {"run", "--macro", "v.mak", "serie/b.vas", "SERIE\\B.VAS", "Serie/b.VAS"}).code, 0);
  EXPECT_NE(RunProgram(place, {"collection", "list", "K.COL"}).out.find("\n1\t"), std::string::npos);
  EXPECT_EQ(RunProgram(place, {"collection", "list", "K.COL"}).out.find("\n2\t"), std::string::npos);
}

// The log is open from the start.
TEST_F(ProgramSignals, LeaveNothingIncompleteOfAProgramThatIsKilled) {
  {
    const StalledProgram program(place, {"run", "--macro", "s.mak", "--log", "log.txt", "viele"});
    ASSERT_TRUE(program.WaitUntilStalled());
  }
  for (const std::string& name : place.Files()) {
    EXPECT_EQ(name.find(".tmp"), std::string::npos) << name;
    if (!name.ends_with("_s.vas")) continue;
    EXPECT_EQ(place.Read(name).size(), place.Read("viele/10.vas").size()) << name;
  }
  EXPECT_FALSE(place.Has("log.txt"));
}

TEST_F(ProgramRun, APathMayBeginWithASlash) {
  std::string path = place.At("serie\\b.vas").substr(2);  // without its drive
  std::ranges::replace(path, '\\', '/');
  EXPECT_EQ(RunProgram(place, {"info", path}).code, 0);
  EXPECT_EQ(RunProgram(place, {"run", "--macro", "s.mak", path}).code, 0);
}

TEST_F(ProgramRun, NamesWithWildcardsStandForTheFiles) {
  for (const std::string name : {"c.vas", "-d.vas", "c.vas~", "x1.vas"}) {
    place.Write("serie/" + name, samples::VasBytes(Sample(0)));
  }
  EXPECT_EQ(RunProgram(place, {"run", "--macro", "s.mak", "serie/?.vas"}).code, 0);
  EXPECT_EQ(place.Files(), (std::vector<std::string>{"s.mak", "serie/-d.vas", "serie/b.vas", "serie/b_s.vas",
                                                     "serie/c.vas", "serie/c.vas~", "serie/c_s.vas", "serie/x1.vas"}));
  EXPECT_EQ(RunProgram(place, {"run", "--macro", "s.mak", "serie/none*.vas"}).code, 4);
  place.Write("-m.mak", kSaveMacro);
  EXPECT_EQ(RunProgram(place, {"macro", "show", "-m.m*"}).code, 0);
}

TEST_F(ProgramRun, PathsAreShownWithBackslashes) {
  const Outcome missing = RunProgram(place, {"collection", "list", "serie/nix.col"});
  EXPECT_NE(missing.err.find("serie\\nix.col"), std::string::npos) << missing.err;
  const Outcome device = RunProgram(place, {"run", "--macro", "s.mak", "serie/con.vas"});
  EXPECT_NE(device.err.find("'serie\\con.vas'"), std::string::npos) << device.err;
  EXPECT_EQ(RunProgram(place, {"run", "--macro", "s.mak", "serie\\\""}).code, 0) << "as \"serie\\\" arrives";
}

}  // namespace
}  // namespace quiverion::cli
