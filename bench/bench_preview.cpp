// The preview: from a changed value of the macro to the painted picture, and how long the window meanwhile takes to
// answer. The yardstick is a run of the same macro over the same file without a preview.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QTableView>
#include <QTimer>

#include "bench_support.h"
#include "generator/sample_files.h"
#include "macro/command_catalogue.h"
#include "macro/run_driver.h"
#include "platform/files/overlay_files.h"
#include "view/preview/frmPreview.h"

namespace quiverion::bench {
namespace {

MacroEvent With(const char* name, std::initializer_list<std::pair<const char*, MacroValue>> values = {}) {
  const CommandRow& row = *FindCommand(name);
  MacroEvent event(row.eventId);
  for (const Parameter& parameter : row.parameters) event.Set(parameter.key, PresetOf(parameter));
  for (const auto& [key, value] : values) event.Set(key, value);
  return event;
}

// Ten steps; `percent` is the limit that changes.
MacroEventList TenSteps(const char* percent, const std::string& directory) {
  return {With("evtFaultVectors", {{"ChkAbsDeviation", 1},
                                   {"TxtAbsDeviation", std::string(percent)},
                                   {"CompareVectorType", 3},
                                   {"CboMedianX", 2},
                                   {"CboMedianY", 2}}),
          With("evtInterpolation"),
          With("evtGauss3x3"),
          With("evtVortexCentres", {{"FileName", directory + "Wirbel.txt"}}),
          With("evtInsertComment", {{"Comment", std::string("gefiltert")}}),
          With("evtGauss5x5"),
          With("evtTecPlotVorticity"),
          With("evtStanfordVectorField"),
          With("evtVorticityBackground"),
          With("evtSaveVas", {{"Postfix", std::string("_g")}})};
}

std::string WriteField(const ScratchDirectory& directory, int columns, double outliers) {
  const samples::SampleOptions options{
      .columns = columns, .rows = columns == 125 ? 100 : columns, .outlierShare = outliers};
  WritePlainly(directory.File("a.vas"), samples::VasBytes(samples::MakeSampleField(options)));
  return directory.File("");
}

// `range(1)`: the step that is shown. `range(2)`: outliers in percent.
void ChangeValue(benchmark::State& state) {
  const ScratchDirectory directory;
  const std::string place =
      WriteField(directory, static_cast<int>(state.range(0)), static_cast<double>(state.range(2)) / 100.0);
  const auto files = MakeSystemFileSystem();
  const SystemClock clock;
  const BufferField buffer;
  frmPreview window({*files, clock, '.', [] {}, [&]() -> const BufferField& { return buffer; }});
  window.resize(1600, 1000);
  window.show();
  window.ShowMacro(TenSteps("30", place), static_cast<int>(state.range(1)) - 1);
  window.ShowFiles(place, {"a.vas"});
  const auto& table = *window.findChild<QTableView*>("tblSteps")->model();
  const auto rejected = [&] { return table.index(1, StepTable::rejected).data().toString(); };
  const auto await = [&](auto done) {
    while (!done()) QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    QApplication::processEvents();
  };
  await([&] { return !rejected().isEmpty(); });
  QElapsedTimer sinceTick;
  double worst = 0.0;
  QTimer tick;
  tick.setTimerType(Qt::PreciseTimer);
  QObject::connect(&tick, &QTimer::timeout, [&] {
    worst = std::max(worst, static_cast<double>(sinceTick.nsecsElapsed()) / 1e6 - 10.0);
    sinceTick.restart();
  });
  sinceTick.start();
  tick.start(10);
  bool high = false;
  for (auto _ : state) {
    high = !high;
    const QString before = rejected();
    window.ShowMacro(TenSteps(high ? "80" : "30", place), static_cast<int>(state.range(1)) - 1);
    await([&] { return rejected() != before; });
  }
  state.counters["latest answer ms"] = worst;
}
BENCHMARK(ChangeValue)
    ->ArgsProduct({{125, 400, 1000}, {1, 10}, {2, 10}})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->MeasureProcessCPUTime();

void RunTheSame(benchmark::State& state) {
  const ScratchDirectory directory;
  BenchSession program;
  OverlayFiles overlay(*program.files);
  Session session(overlay, program.ui, program.log, program.clock);
  session.inputDirectory = WriteField(directory, static_cast<int>(state.range(0)), 0.02);
  session.selectedFiles = {"a.vas"};
  session.macro = TenSteps("30", session.inputDirectory);
  for (auto _ : state) {
    overlay.Clear();
    RunMacro(session);
  }
}
BENCHMARK(RunTheSame)->Arg(125)->Arg(400)->Arg(1000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace quiverion::bench
