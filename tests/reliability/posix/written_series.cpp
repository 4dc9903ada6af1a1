#include "reliability/written_series.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "generator/sample_files.h"
#include "macro/run_driver.h"

namespace quiverion::test {
namespace {

namespace fs = std::filesystem;

samples::SampleField Sample(int index) {
  return samples::MakeSampleField({.index = index, .columns = 22, .rows = 14});
}

MacroEvent SaveEvent(std::int32_t eventId, const std::string& prefix, const std::string& postfix = {}) {
  MacroEvent event(eventId);
  event.Set("Prefix", prefix);
  event.Set("Postfix", postfix);
  return event;
}

MacroEvent FileEvent(std::int32_t eventId, const std::string& path) {
  MacroEvent event(eventId);
  event.Set("FileName", path);
  if (eventId == 40002) event.Set("AutoTrafo", false);
  return event;
}

}  // namespace

const std::vector<Fault> kFaults = {{ENOSPC, ErrorNumber::diskFull, true, {MessageAnswer::retry}},
                                    {ENOSPC, ErrorNumber::diskFull, false, {MessageAnswer::retry}},
                                    {EDQUOT, ErrorNumber::diskFull},
                                    {EMFILE, ErrorNumber::tooManyFiles},
                                    {EMFILE, ErrorNumber::tooManyFiles, true, {MessageAnswer::retry}},
                                    {EIO, ErrorNumber::deviceError},
                                    {EACCES, ErrorNumber::accessDenied},
                                    {EROFS, ErrorNumber::pathAccess}};

Tree ReadTree(const std::string& directory) {
  Tree tree;
  for (const auto& entry : fs::recursive_directory_iterator(directory)) {
    if (!entry.is_regular_file()) continue;
    std::ifstream file(entry.path(), std::ios::binary);
    tree[entry.path().string().substr(directory.size())] = {std::istreambuf_iterator<char>(file), {}};
  }
  return tree;
}

bool IsTemporary(const std::string& path) {
  return fs::path(path).filename().string().starts_with(".quiverion-");
}

std::vector<WrittenKind> WrittenKinds(const std::string& directory) {
  const std::string vortices = "ziel/wirbel.txt", collection = "ziel/serie.col";
  const Tree oldResults = {{"ziel/a.vas", samples::VasBytes(Sample(5))}, {"ziel/b.vas", "no field, but kept"}};
  const Tree oldVortices = {{vortices, "X [mm]\tand so on\r\n1\t2\r\n"}};
  const Tree oldRecords = {{collection, samples::CollectionBytes({Sample(7), Sample(8)}, {"eins", "zwei"})}};
  std::vector<WrittenKind> kinds = {{"new VAS", SaveEvent(10001, "ziel\\"), "ziel/a.vas"},
                                    {"VAS over an old one", SaveEvent(10001, "ziel\\"), "ziel/a.vas", oldResults},
                                    {"VAS over the input", SaveEvent(10001, ""), "a.vas"}};
  for (const std::int32_t id : {10101, 10102, 10103, 10104, 10201, 10202, 10301, 10302}) {
    const std::string target = id < 10300 ? "ziel/a.txt" : "ziel/a.csv";
    kinds.push_back({"export " + std::to_string(id), SaveEvent(id, "ziel\\"), target});
  }
  kinds.push_back({"export 70101", SaveEvent(70101, "ziel\\"), "ziel/a.nc"});
  kinds.push_back({"export 70102", SaveEvent(70102, "ziel\\"), "ziel/a.vti"});
  kinds.push_back({"export 70103", SaveEvent(70103, "ziel\\"), "ziel/a.tec"});
  for (const Tree& old : {Tree(), oldVortices}) {
    kinds.push_back({"vortex text", FileEvent(40002, directory + vortices), vortices, old, false, true});
  }
  for (const Tree& old : {Tree(), oldRecords}) {
    kinds.push_back({"collection", FileEvent(60001, directory + collection), collection, old, true});
  }
  return kinds;
}

WrittenSeries::WrittenSeries(const WrittenKind& kind, const std::string& directory)
    : kind_(kind), directory_(directory), initial_(kind.before) {
  initial_["a.vas"] = samples::VasBytes(Sample(1));
  initial_["b.vas"] = samples::VasBytes(Sample(2));
}

void WrittenSeries::Restore() const {
  fs::remove_all(directory_);
  fs::create_directories(directory_ + "ziel");
  for (const auto& [path, bytes] : initial_) std::ofstream(directory_ + path, std::ios::binary) << bytes;
}

WrittenSeries::Result WrittenSeries::Run(const std::vector<std::string>& names, std::vector<MessageAnswer> answers,
                                         const std::function<int(const Step&, const SystemCall&)>& before) const {
  const auto files = MakeSystemFileSystem();
  ScriptedProgram program(*files);
  ScriptedUi& ui = program.ui;
  Session& session = program.session;
  ui.answers.assign(answers.begin(), answers.end());
  session.inputDirectory = directory_;
  session.selectedFiles = names;
  session.macro = {kind_.command, SaveEvent(10001, "", "_next")};
  {
    SystemCalls calls(directory_);
    calls.largestWrite = 700;
    calls.before = [&](const SystemCall& call) {
      // Shown for a file: that it is loaded, then each command.
      const std::int32_t file = ui.progress.back().currentFile;
      const auto shown = std::ranges::count(ui.progress, file, &RunProgress::currentFile);
      return before ? before({file, shown > 2}, call) : 0;
    };
    RunMacro(session);
    EXPECT_EQ(calls.strayed, "");
  }
  const Context& context = session.context;
  return {program.TakeLog(), ReadTree(directory_), ui.messages, context.runHadError, context.userAbortRequested};
}

}  // namespace quiverion::test
