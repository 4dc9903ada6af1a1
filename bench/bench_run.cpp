// The run driver over many small files: ten view commands and a save each, compared with plainly reading and creating
// the same files.
#include <benchmark/benchmark.h>

#include "bench_support.h"
#include "generator/sample_field.h"
#include "generator/sample_files.h"
#include "log/log_writers.h"
#include "macro/run_driver.h"

namespace quiverion::bench {
namespace {

constexpr int kFiles = 2000;

std::string NameOf(int k) {
  return std::to_string(k) + ".vas";
}

std::string SmallField() {
  samples::SampleOptions options;
  options.columns = options.rows = 3;
  return samples::VasBytes(samples::MakeSampleField(options));
}

MacroEventList ViewMacro() {
  MacroEventList macro;
  for (const std::int32_t id : {50001, 50002, 50003, 50004, 50005, 50001, 50002, 50003, 50004, 50005}) {
    macro.emplace_back(id).Set("Checked", true);
  }
  MacroEvent save(10001);
  save.Set("Prefix", std::string("out/"));
  save.Set("Postfix", std::string());
  macro.push_back(save);
  return macro;
}

void PlainReadAndCreate(benchmark::State& state) {
  const ScratchDirectory directory;
  const std::string bytes = SmallField();
  for (int k = 0; k < kFiles; ++k) WritePlainly(directory.File(NameOf(k)), bytes);
  std::vector<char> target(bytes.size());
  const std::string temporary = directory.File("t");
  for (auto _ : state) {
    state.PauseTiming();
    std::filesystem::remove_all(directory.File("out"));
    std::filesystem::create_directory(directory.File("out"));
    state.ResumeTiming();
    for (int k = 0; k < kFiles; ++k) {
      benchmark::DoNotOptimize(ReadPlainly(directory.File(NameOf(k)), target));
      WritePlainly(temporary, bytes);
      std::rename(temporary.c_str(), directory.File("out/" + NameOf(k)).c_str());
    }
  }
  state.SetItemsProcessed(state.iterations() * kFiles);
}
BENCHMARK(PlainReadAndCreate)->Unit(benchmark::kMillisecond);

// The time of a series is in proportion to its files: a tenth of them takes a tenth.
void RunOverSmallFiles(benchmark::State& state) {
  const ScratchDirectory directory;
  const std::string bytes = SmallField();
  BenchSession bench;
  for (int k = 0; k < state.range(0); ++k) {
    WritePlainly(directory.File(NameOf(k)), bytes);
    bench.session.selectedFiles.push_back(NameOf(k));
  }
  bench.session.inputDirectory = directory.Path() + "/";
  bench.session.macro = ViewMacro();
  std::size_t logged = 0;
  TerminalWriter writer([&logged](std::string_view text) { logged += text.size(); }, false);
  bench.log.Attach(writer);
  for (auto _ : state) {
    state.PauseTiming();
    std::filesystem::remove_all(directory.File("out"));
    bench.ui.progress.clear();
    state.ResumeTiming();
    RunMacro(bench.session);
  }
  if (bench.context.runHadError || logged == 0) state.SkipWithError("run failed");
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(RunOverSmallFiles)->Arg(kFiles)->Arg(kFiles / 10)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace quiverion::bench
