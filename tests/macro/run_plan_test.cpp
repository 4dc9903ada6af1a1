// The plan of a run: compared with what the run then writes, and in words.
#include "macro/run_plan.h"

#include <set>

#include "run_fixture.h"
#include "support/approved.h"
#include "support/collection_bytes.h"

namespace quiverion::test {
namespace {

struct PlanCase {
  const char* title;
  std::vector<std::string> inputs;
  MacroEventList macro;
  std::vector<std::string> alsoThere = {};  // paths of other files
};

MacroEvent Buffer(const std::string& path) {
  return Event(20002, {{"FileName", path}});
}
MacroEvent Collect(const std::string& path) {
  return Event(60001, {{"FileName", path}});
}
MacroEvent Vortices(const std::string& path, bool copies) {
  return Event(40002, {{"FileName", path}, {"AutoTrafo", copies}});
}

const PlanCase kCases[] = {
    {"new results", {"a.vas", "b.vas"}, {SaveEvent("Ergebnis\\", "_g")}},
    {"results of an earlier run", {"a.vas", "b.vas"}, {SaveEvent("Ergebnis/", "_g")}, {"/serie/Ergebnis/b_g.vas"}},
    {"the originals", {"a.vas", "b.vas", "c.dat"}, {SaveEvent("", "")}, {"/serie/b_g.vas"}},
    {"two inputs, one result", {"a.dat", "a.vas", "b.vas"}, {SaveEvent("g_", "")}},
    {"two groups of inputs", {"a.dat", "a.vas", "b.dat", "b.vas"}, {SaveEvent("g_", "")}, {"/serie/g_b.vas"}},
    {"a later and an earlier input", {"a.vas", "a1.vas", "a11.vas"}, {SaveEvent("", "1")}, {"/serie/a111.vas"}},
    {"an input that is not selected", {"a.vas"}, {SaveEvent("", "1")}, {"/serie/a1.vas"}},
    {"twice to one name", {"a.vas", "b.vas"}, {SaveEvent("x/", ""), SaveEvent("x\\", "")}, {"/serie/x/b.vas"}},
    {"a directory for each", {"a.vas", "b.vas"}, {SaveEvent("", "/tief")}, {"/serie/b/tief.vas"}},
    {"buffer", {"a.vas", "b.vas"}, {Buffer("/m/m.vas"), Event(20003), SaveEvent("", "_m")}, {"/m/m.vas"}},
    {"two buffers",
     {"a.vas", "b.vas"},
     {Buffer("/m/m.vas"), Event(20001), Buffer("/m/m.vas"), Buffer("/m/n.vas")},
     {"/m/m.vas", "/m/n.vas"}},
    {"no buffer", {"a.vas"}, {Buffer("/m/m.vas"), SaveEvent("", "_m")}},
    {"appended files", {"a.vas", "b.vas"}, {Collect("/k/S.col"), Vortices("/k/W.txt", true), Collect("/k/S.col")}},
    {"another one", {"a.vas"}, {Collect("/k/S.col"), Vortices("/k/W.txt", false), Vortices("", false)}, {"/k/W.txt"}},
    {"every form",
     {"a.vas"},
     {Event(10101, {{"Prefix", std::string("VF of ")}, {"Postfix", std::string()}}),
      Event(10301, {{"Prefix", std::string()}, {"Postfix", std::string("_m")}})}},
    {"commands that fail", {"a.vas"}, {SaveEvent("", "_1"), SaveEvent("../", ""), SaveEvent("", "_2")}},
    {"a damaged one", {"a.vas"}, {SaveEvent("", "_1"), Event(10001, {{"Prefix", std::string()}}), SaveEvent("", "_2")}},
    {"nothing is saved", {"a.vas"}, {Event(40103), Event(12345), Event(10000)}},
    {"no command", {"a.vas", "b.vas"}, {}},
    {"a file is missing", {"a.vas", "weg.vas"}, {SaveEvent("", "_g")}},
};

class RunPlanTest : public RunTest {
 protected:
  void Prepare(const PlanCase& c) {
    files.clear();
    session.selectedFiles.clear();
    program.context.buffer = {};
    for (const std::string& name : c.inputs) {
      const samples::SampleField field = SmallSample(static_cast<int>(session.selectedFiles.size()));
      Select(name);
      if (name != "weg.vas")
        files["/serie/" + name] = name.ends_with("dat") ? samples::DatBytes(field) : samples::VasBytes(field);
    }
    for (const std::string& path : c.alsoThere) files[path] = samples::VasBytes(SmallSample(9));
  }

  RunPlan PlanOf(const PlanCase& c) {
    return PlanRun(program.files, {session.inputDirectory, session.selectedFiles, c.macro}).value();
  }

  static std::string Told(const RunPlan& plan) {
    std::string text;
    for (const PlannedStep& step : plan.steps) {
      text += std::string(WordOf(step.use)) + "\t" + plan.PathOf(step) + (step.isOriginal ? ", Original" : "") +
              (step.isLaterInput ? ", spätere Eingabe" : "") + (step.isShared ? ", geteilt" : "") + "\n";
    }
    for (const PlanFinding& finding : FindingsOf(plan)) {
      text += std::string(static_cast<std::size_t>(finding.severity) + 1, '!') + " " + finding.text + "\n";
    }
    return text;
  }
};

TEST_F(RunPlanTest, SaysWhatTheRunThenDoes) {
  std::string told;
  for (const PlanCase& c : kCases) {
    Prepare(c);
    const RunPlan plan = PlanOf(c);
    told += "== " + std::string(c.title) + "\n" + Told(plan);
    std::set<std::string> created, changed;
    for (const PlannedStep& step : plan.steps) {
      if (step.use == FileUse::creates) created.insert(WithSlashes(plan.PathOf(step)));
      if (step.use == FileUse::replaces || step.use == FileUse::appends) changed.insert(WithSlashes(plan.PathOf(step)));
    }
    const std::map<std::string, std::string> before = files;
    RunLogOf(c.macro);
    for (const auto& [path, bytes] : files) {
      if (path.find("/Swirl") != std::string::npos) continue;  // copies for vortex centres
      if (before.contains(path)) {
        EXPECT_TRUE(bytes == before.at(path) || changed.contains(path)) << c.title << ": " << path;
        changed.erase(path);
      } else {
        EXPECT_TRUE(created.contains(path)) << c.title << ": " << path;
        created.erase(path);
        changed.erase(path);
      }
    }
    EXPECT_TRUE(created.empty()) << c.title << ": " << *created.begin();
  }
  ExpectApproved("run_plans.txt", told);
}

TEST_F(RunPlanTest, LooksIntoCollections) {
  const PlanCase c = {"", {"a.vas", "b.vas", "c.vas"}, {Collect("/k/S.col"), Collect("/k/T.col"), Collect("/k/S.col")}};
  Prepare(c);
  session.inputDirectory = "/" + std::string(150, 'l') + "ö/";  // of a long path a record has the end
  for (const std::string& name : c.inputs) files[session.inputDirectory + name] = files["/serie/" + name];
  session.selectedFiles = {"a.vas", "c.vas"};
  RunLogOf({Collect("/k/S.col"), Collect("/k/S.col")});
  session.selectedFiles = c.inputs;
  files["/k/T.col"] = "keine Kollektion";
  std::string told = Told(PlanOf(c));
  files["/k/T.col"] = files["/k/S.col"].substr(0, 300);
  told += Told(PlanOf(c));
  program.files.openErrors["/k/S.col"] = ErrorNumber::accessDenied;
  told += Told(PlanOf({"", {}, {Collect("/k/S.col")}}));
  ExpectApproved("run_plan_collections.txt", told);
}

TEST_F(RunPlanTest, IsCancelledAtAnyQuestion) {
  const PlanCase c = {"", {"a.vas", "b.vas"}, {SaveEvent("", "_g"), Collect("/k/S.col")}};
  Prepare(c);
  RunLogOf(c.macro);
  int asked = 0;
  PlanRun(program.files, {session.inputDirectory, c.inputs, c.macro}, [&] { return ++asked, false; });
  EXPECT_GE(asked, 3);
  for (int cancelAt = 1; cancelAt <= asked; ++cancelAt) {
    int k = 0;
    EXPECT_FALSE(PlanRun(program.files, {session.inputDirectory, c.inputs, c.macro}, [&] { return ++k == cancelAt; }));
  }
}

// A directory may vanish, or only its files may be accessible.
TEST(RunPlanSurroundings, AreNoErrors) {
  class NoListing : public MemoryFileSystem {
    std::vector<std::string> ListFiles(const std::string&) override { throw SystemError(ErrorNumber::accessDenied); }
  };
  NoListing files;
  const auto findings = [&] {
    std::string text;
    const auto plan = PlanRun(files, {"/serie/", {"a.vas", "b.vas"}, {SaveEvent("", "_g")}});
    for (const PlanFinding& finding : FindingsOf(*plan)) text += finding.text + "\n";
    return text;
  };
  EXPECT_EQ(findings(), "2 Dateien fehlen\n");
  for (const char* path : {"/serie/a.vas", "/serie/b.vas", "/serie/b_g.vas"}) files.files[path] = "?";
  EXPECT_EQ(findings(), "ersetzt 1 Ergebnis\n1 neues Ergebnis\n");
  const auto spelled = PlanRun(files, {"/serie/", {"a.vas"}, {SaveEvent("x/", ""), SaveEvent(".\\x//", "")}});
  EXPECT_EQ(spelled->createdResults, 1);
  EXPECT_EQ(SelectionText(3, 3000), "3 von 3000 Dateien gewählt");
}

}  // namespace
}  // namespace quiverion::test
