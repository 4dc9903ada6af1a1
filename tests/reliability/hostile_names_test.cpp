#include <gtest/gtest.h>

#include <algorithm>

#include "generator/sample_files.h"
#include "support/program.h"

namespace quiverion::cli {
namespace {

using Names = std::vector<std::string>;

/// Macros and series from strangers, in texts/serie: what they write must stay there.
class HostileNames : public testing::Test {
 protected:
  // Runs one command over serie/<name> and returns the new files, relative to the directory of the series.
  Names NewFilesOf(const std::string& command, const std::string& name) {
    place_.Write("texts/serie/" + name, samples::VasBytes(samples::MakeSampleField({.columns = 30, .rows = 24})));
    EXPECT_EQ(RunProgram(place_, {"macro", "import", "-", "m.mak"}, "[" + command + "]").code, 0);
    const Names before = place_.Files();
    outcome_ = RunProgram(place_, {"run", "--macro", "m.mak", "texts/serie/" + name});
    Names files;
    for (const std::string& path : place_.Files()) {
      if (std::binary_search(before.begin(), before.end(), path)) continue;
      EXPECT_TRUE(path.starts_with("texts/serie/")) << path;
      files.push_back(path.substr(std::min<std::size_t>(path.size(), 12)));
    }
    return files;
  }

  static std::string Save(const std::string& prefix, const std::string& postfix) {
    return R"({"EventId": "evtSaveVas", "Prefix": ")" + prefix + R"(", "Postfix": ")" + postfix + R"("})";
  }

  Workplace place_;
  Outcome outcome_;
};

TEST_F(HostileNames, APrefixDoesNotLeadOutOfTheDirectory) {
  const std::string refusal = "führt aus dem Verzeichnis der Originaldatei hinaus!   (Fehler-Nr. 75)";
  const std::tuple<std::string, std::string, std::string> cases[] = {
      {"../", "", ""},
      {"..\\\\", "", ""},
      {"sub/../../", "", ""},
      {"sub/.. /", "", ""},
      {".../", "", ""},
      {"", "/../../x", ""},
      {"", "_s", "a_s.vas"},
      {"sub\\\\", "..", "sub/a...vas"},
      {"x..", "", "x..a.vas"},
      {"./p ", "", "p a.vas"},
      {"/abs/", "", "abs/a.vas"},  // a leading separator only separates
      {"\\\\\\\\host\\\\", "", "host/a.vas"}};
  for (const auto& [prefix, postfix, result] : cases) {
    EXPECT_EQ(NewFilesOf(Save(prefix, postfix), "a.vas"), result.empty() ? Names() : Names{result}) << prefix;
    EXPECT_EQ(outcome_.code, result.empty() ? 1 : 0) << prefix;
    EXPECT_EQ(outcome_.out.find(refusal) != std::string::npos, result.empty()) << outcome_.out;
  }
}

// The copies of a field are in a directory with its name. For "...vas" that was the parent directory.
TEST_F(HostileNames, AFileOfPointsDoesNotLeadItsCopiesOutOfTheDirectory) {
  const std::string command = R"({"EventId": "evtVortexCentres", "FileName": "", "AutoTrafo": true})";
  EXPECT_GT(NewFilesOf(command, "a.vas").size(), 0u);
  EXPECT_EQ(NewFilesOf(command, "...vas"), Names());
  EXPECT_EQ(outcome_.code, 1) << outcome_.out;
}

// The log replaced other files of the run at the end: its macro, its vortices, its collection.
TEST_F(HostileNames, TheLogIsNoOtherFileOfTheRun) {
  NewFilesOf(R"({"EventId": "evtVortexCentres", "FileName": "texts/serie/w.txt", "AutoTrafo": false},
                {"EventId": "evtCollectStatistics", "FileName": "texts/serie/c.txt"})",
             "a.vas");
  place_.Write("m.txt", place_.Read("m.mak"));
  Names before = place_.Files();
  for (const std::string log : {"m.txt", "texts/serie/w.txt", "./texts/serie/c.txt"}) {
    const Outcome outcome = RunProgram(place_, {"run", "--macro", "m.txt", "--log", log, "texts/serie/a.vas"});
    EXPECT_EQ(outcome.code, 2) << outcome.err;
    EXPECT_NE(outcome.err.find("Die Log-Datei ist eine Datei des Laufs selbst"), std::string::npos) << outcome.err;
  }
  // These files need not exist before the run.
  place_.Write("new.json", R"([{"EventId": "evtVortexCentres", "FileName": "new.txt", "AutoTrafo": false}])");
  EXPECT_EQ(RunProgram(place_, {"macro", "import", "new.json", "new.mak"}).code, 0);
  const std::vector<std::string> over = {"run", "--macro", "new.mak", "texts/serie/a.vas", "--log", "texts/../new.txt"};
  EXPECT_EQ(RunProgram(place_, over).code, 2);
  EXPECT_EQ(RunProgram(place_, {"statistics", "mean", "texts/serie/c.txt", "./texts/serie/c.txt"}).code, 2);
  before.insert(std::ranges::find(before, "texts/serie/a.vas"), {"new.json", "new.mak"});
  EXPECT_EQ(place_.Files(), before);
}

}  // namespace
}  // namespace quiverion::cli
