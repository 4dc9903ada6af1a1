#include "reliability/written_series.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "field/frames.h"
#include "generator/sample_files.h"
#include "macro/run_driver.h"

namespace quiverion::test {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kExportOpenFailed =
    "    Die aktuelle Datei kann nicht gespeichert werden, da folgender Fehler beim Öffnen aufgetreten ist:";

samples::SampleField Sample(int index) {
  return samples::MakeSampleField({.index = index, .columns = 22, .rows = 14});
}

MacroEvent SaveEvent(std::int32_t eventId, const std::string& prefix, const std::string& postfix) {
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

WrittenKind VasKind(const std::string& name, const std::string& prefix, const std::string& target, Tree before = {}) {
  return {.name = name,
          .command = SaveEvent(10001, prefix, ""),
          .target = target,
          .before = std::move(before),
          .announcement = "Datei speichern unter",
          .openFailed = SaveWording().openFailed,
          .writeFailedIn = "    Die Datei '"};
}

WrittenKind ExportKind(std::int32_t eventId, const std::string& announcement, const std::string& extension) {
  WrittenKind kind = VasKind("export " + std::to_string(eventId), "", "ziel/a" + extension);
  kind.command = SaveEvent(eventId, "ziel\\", "");
  kind.announcement = "für ";
  kind.openFailed = kExportOpenFailed;
  kind.name += " " + announcement;
  return kind;
}

WrittenKind VortexKind(const std::string& name, const std::string& directory, Tree before = {}) {
  return {.name = name,
          .command = FileEvent(40002, directory + "ziel/wirbel.txt"),
          .target = "ziel/wirbel.txt",
          .before = std::move(before),
          .announcement = "Suche Maxima",
          .openFailed =
              "    Gefundene Maxima können nicht gespeichert werden, da beim Öffnen folgender Fehler aufgetreten ist:",
          .writeFailedIn = "    In die Datei '",
          .afterFailure =
              "Speichern der transformierten Vektorfelder...\r\n"
              "Speichern der transformierten Vektorfelder beendet.\r\n",
          .appended = true};
}

WrittenKind CollectionKind(const std::string& name, const std::string& directory, Tree before = {}) {
  WrittenKind kind = VasKind(name, "", "ziel/serie.col", std::move(before));
  kind.command = FileEvent(60001, directory + "ziel/serie.col");
  kind.announcement = "Vektorfeld für Statistik sammeln";
  kind.isCollection = true;
  return kind;
}

}  // namespace

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
  const std::string collection = samples::CollectionBytes({Sample(7), Sample(8)}, {"eins", "zwei"});
  const Tree oldResults = {{"ziel/a.vas", samples::VasBytes(Sample(5))}, {"ziel/b.vas", "no field, but kept"}};
  return {VasKind("new VAS", "ziel\\", "ziel/a.vas"),
          VasKind("VAS over an old one", "ziel\\", "ziel/a.vas", oldResults),
          VasKind("VAS over the input", "", "a.vas"),
          ExportKind(10101, "vectors", ".txt"),
          ExportKind(10102, "grid", ".txt"),
          ExportKind(10103, "grid", ".txt"),
          ExportKind(10104, "profile", ".txt"),
          ExportKind(10201, "triples", ".txt"),
          ExportKind(10202, "triples", ".txt"),
          ExportKind(10301, "vectors", ".csv"),
          ExportKind(10302, "grid", ".csv"),
          VortexKind("new vortex text", directory),
          VortexKind("vortex text that grows", directory, {{"ziel/wirbel.txt", "X [mm]\tand so on\r\n1\t2\r\n"}}),
          CollectionKind("new collection", directory),
          CollectionKind("collection that grows", directory, {{"ziel/serie.col", collection}})};
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
