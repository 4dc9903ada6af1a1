// The windows compared with the command line, without a display by default. A separate program, because it needs a
// QApplication.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTimer>

#include "app/file_list.h"
#include "app/frmMain.h"
#include "bench_support.h"
#include "dialogs/application.h"
#include "dialogs/frmShowCollection.h"
#include "dialogs/frmShowLogFile.h"
#include "generator/sample_files.h"
#include "macro/run_driver.h"
#include "platform/process/environment.h"
#include "statistics/compute_statistic.h"
#include "support/test_session.h"

namespace quiverion::bench {
namespace {

void ListDirectory(benchmark::State& state) {
  const ScratchDirectory directory;
  for (int k = 0; k < state.range(0); ++k) WritePlainly(directory.File("run" + std::to_string(k) + ".vas"), "");
  const auto files = MakeSystemFileSystem();
  FileList list;
  list.Use(*files);
  list.resize(300, 400);
  list.show();
  for (auto _ : state) {
    list.ShowDirectory("");
    list.ShowDirectory(directory.File(""));
    list.selectAll();
    benchmark::DoNotOptimize(list.SelectedNames());
    QApplication::processEvents();
  }
}
BENCHMARK(ListDirectory)->Arg(1000)->Arg(20000)->Unit(benchmark::kMillisecond);

// Opens a log of as many lines and scrolls from end to end.
void OpenLog(benchmark::State& state) {
  LogText text;
  RunLog log;
  log.Attach(text);
  for (int line = 0; line < state.range(0); line += 4) {
    log.WriteLogLine(MakeTitleLine("run" + std::to_string(line) + ".vas") + "\r\n");
    log.WriteLogLine("Datei speichern unter '/daten/messung/Ergebnis/run" + std::to_string(line) + "_g.vas'... ");
    log.WriteLogLine("fertig\r\n");
    log.WriteLogLine(
        "    Minimaler Wert auf -7755.53495833333 eingestellt\r\n    Maximaler Wert auf 7755.5349583333 "
        "eingestellt\r\n");
  }
  const auto files = MakeSystemFileSystem();
  test::ScriptedUi ui;
  for (auto _ : state) {
    frmShowLogFile window(text, "Log.rtf", *files, ui);
    window.show();
    QApplication::processEvents();
    auto* const box = window.findChild<QPlainTextEdit*>("RichTextBox");
    box->verticalScrollBar()->setValue(box->verticalScrollBar()->maximum());
    QApplication::processEvents();
  }
}
BENCHMARK(OpenLog)->Arg(10000)->Arg(200000)->Unit(benchmark::kMillisecond);

MacroEventList JobMacro() {
  MacroEvent search(30001);
  for (const Parameter& parameter : ParametersOf(30001)) {
    if (parameter.kind == ParameterKind::text) search.Set(parameter.key, std::string("30"));
    if (parameter.kind == ParameterKind::flag) search.Set(parameter.key, true);
    if (parameter.kind == ParameterKind::checkState) search.Set(parameter.key, 0);
    if (parameter.kind == ParameterKind::integer) search.Set(parameter.key, 2);
  }
  search.Set("ChkAbsDeviation", 1);
  search.Set("CompareVectorType", 3);
  MacroEvent save(10001);
  save.Set("Prefix", std::string("out/"));
  save.Set("Postfix", std::string());
  return {search, MacroEvent(40001), MacroEvent(40103), MacroEvent(50103), MacroEvent(50106), save};
}

// The same macro over the same files: `windows` runs it in the window, with progress and log up to the point at which
// the log window would open; otherwise with the log as the command line writes it.
void RunSeries(benchmark::State& state, bool windows) {
  const ScratchDirectory directory;
  std::vector<std::string> names;
  for (int k = 0; k < 500; ++k) {
    names.push_back("run" + std::to_string(1000 + k) + ".dat");
    WritePlainly(directory.File(names.back()), samples::DatBytes(samples::MakeSampleField({.index = k % 10})));
  }
  const auto files = MakeSystemFileSystem();
  const SystemClock clock;
  frmMain window({*files, clock, [] { return std::vector<std::string>{"/"}; }, directory.File("")});
  test::ScriptedUi silent;
  RunLog log;
  LogText text;
  log.Attach(text);
  Session plain(*files, silent, log, clock);
  Session& session = windows ? window.TheSession() : plain;
  session.macro = JobMacro();
  session.selectedFiles = names;
  session.inputDirectory = directory.File("");
  for (auto _ : state) {
    state.PauseTiming();
    std::filesystem::remove_all(directory.File("out"));  // a result that replaces a file is synced to the disk
    state.ResumeTiming();
    RunMacro(session);
    silent.progress.clear();
    text.Clear();
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(names.size()));
}
BENCHMARK_CAPTURE(RunSeries, windows, true)->Unit(benchmark::kMillisecond)->MinTime(2);
BENCHMARK_CAPTURE(RunSeries, command_line, false)->Unit(benchmark::kMillisecond)->MinTime(2);

// A collection of `count` fields, as generated: index 0 to 9 repeatedly.
std::string CollectionOf(int count, int columns, int rows) {
  std::vector<samples::SampleField> fields;
  for (int k = 0; k < count; ++k) {
    fields.push_back(samples::MakeSampleField({.index = k % 10, .columns = columns, .rows = rows}));
  }
  return samples::CollectionBytes(fields, std::vector<std::string>(fields.size(), "/daten/messung/run.vas"));
}

// The same statistic: with the progress bar of the main window, and as the command line computes it.
void Statistic(benchmark::State& state, bool windows) {
  const ScratchDirectory directory;
  WritePlainly(directory.File("s.col"),
               CollectionOf(static_cast<int>(state.range(1)), static_cast<int>(state.range(0)), 100));
  const auto files = MakeSystemFileSystem();
  const SystemClock clock;
  frmMain window({*files, clock, [] { return std::vector<std::string>{"/"}; }, directory.File("")});
  window.show();
  QApplication::processEvents();
  test::ScriptedUi silent;
  RunLog log;
  Session plain(*files, silent, log, clock);
  Context& context = windows ? window.TheSession().context : plain.context;
  for (auto _ : state) {
    ComputeStatistic(context, StatisticKind::mean, directory.File("s.col"), directory.File("mean.vas"));
    silent.computation.clear();
    state.PauseTiming();
    std::filesystem::remove(directory.File("mean.vas"));
    state.ResumeTiming();
  }
}
BENCHMARK_CAPTURE(Statistic, windows, true)
    ->Args({5, 500})
    ->Args({5, 10000})
    ->Args({125, 500})
    ->Unit(benchmark::kMillisecond)
    ->MinTime(1);
BENCHMARK_CAPTURE(Statistic, command_line, false)
    ->Args({5, 500})
    ->Args({5, 10000})
    ->Args({125, 500})
    ->Unit(benchmark::kMillisecond)
    ->MinTime(1);

// Opens the window of a collection of 20,000 fields.
void ListCollection(benchmark::State& state) {
  const ScratchDirectory directory;
  WritePlainly(directory.File("s.col"), CollectionOf(20000, 20, 10));
  const auto files = MakeSystemFileSystem();
  const SystemClock clock;
  test::ScriptedUi ui;
  RunLog log;
  Session session(*files, ui, log, clock);
  for (auto _ : state) {
    frmShowCollection window(session.context, directory.File("s.col"));
    window.FillListBox();
    window.show();
    QApplication::processEvents();
  }
}
BENCHMARK(ListCollection)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace quiverion::bench

int main(int argc, char** argv) {
  if (!qEnvironmentVariableIsSet("DISPLAY")) qputenv("QT_QPA_PLATFORM", "offscreen");
  quiverion::PrepareProcess();
  QApplication application(argc, argv);
  quiverion::PrepareApplication(application);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
