// A whole evaluation over a series of DAT files: median 5x5, interpolation, Gauss 3x3, save, collect. The run driver
// compared with plain loops from end to end (lines and numbers one by one, the definitions of the operations, values
// one by one, and nothing collected), and with reading, creating and appending the same bytes.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <fstream>

#include "bench_support.h"
#include "field/formats/load_original_file.h"
#include "generator/sample_field.h"
#include "generator/sample_files.h"
#include "macro/run_driver.h"
#include "operations/kernels/faulty_vectors_plain.h"
#include "operations/kernels/filter_kernel.h"
#include "operations/kernels/filters_plain.h"
#include "operations/kernels/interpolation_plain.h"

namespace quiverion::bench {
namespace {

constexpr int kFiles = 200;

std::string NameOf(int k) {
  return std::to_string(k) + ".dat";
}

// range(0) of every benchmark: 1 columns of a fixed width.
void WriteSeries(const benchmark::State& state, const ScratchDirectory& directory) {
  samples::DatShape shape;
  if (state.range(0) == 1) shape = {.width = 9, .positionDecimals = 1, .decimals = 4};
  for (int k = 0; k < kFiles; ++k) {
    samples::SampleOptions options;
    options.index = k;
    WritePlainly(directory.File(NameOf(k)), samples::DatBytes(samples::MakeSampleField(options), shape));
  }
}

// Results are new files in every round, because a file that replaces another is synced to the disk.
void RemoveResults(benchmark::State& state, const ScratchDirectory& directory) {
  state.PauseTiming();
  std::filesystem::remove_all(directory.File("out"));
  state.ResumeTiming();
}

// `field` has the geometry of the series.
void LoadPlainly(VectorField& field, const std::string& path) {
  constexpr int headerLines = 16;
  std::ifstream file(path);
  std::string line;
  for (int k = 0; k < headerLines; ++k) std::getline(file, line);
  for (std::int32_t& status : field.status.Values()) status = 0;
  while (std::getline(file, line)) {
    double columns[8];
    char* at = line.data();
    for (double& number : columns) number = std::strtod(at, &at);
    const auto i = (static_cast<std::int32_t>(columns[0]) - field.firstPixelX) / field.gridStepX + 1;
    const auto j = (field.firstPixelY - static_cast<std::int32_t>(columns[1])) / field.gridStepY + 1;
    field.velX(i, j) = columns[6];
    field.velY(i, j) = columns[7];
    field.status(i, j) = 1;
  }
}

// The arrays of a VAS file, which is nearly all of it.
void SavePlainly(const VectorField& field, const std::string& path) {
  std::ofstream file(path, std::ios::binary);
  const auto write = [&file](const auto& values) {
    for (const auto& value : values) file.write(reinterpret_cast<const char*>(&value), sizeof value);
  };
  write(field.posX);
  write(field.posY);
  write(field.velX.Values());
  write(field.velY.Values());
  write(field.status.Values());
}

void WholeJobPlain(benchmark::State& state) {
  const ScratchDirectory directory;
  WriteSeries(state, directory);
  FaultyVectorCriteria criteria;
  criteria.magnitudeDeviation = true;
  criteria.magnitudePercent = 30.0;
  criteria.compareVectorType = CompareVectorType::median;
  criteria.halfWidthX = criteria.halfWidthY = 2;
  WeightMatrix gauss(-1, 1, -1, 1, 1.0);
  for (const std::int32_t k : {-1, 0, 1}) {
    for (const std::int32_t l : {-1, 0, 1}) gauss(k, l) = (k == 0 ? 2.0 : 1.0) * (l == 0 ? 2.0 : 1.0);
  }
  BenchSession bench;
  LoadOriginalFile(bench.context, directory.File(NameOf(0)));
  VectorField& field = bench.context.field;
  for (auto _ : state) {
    RemoveResults(state, directory);
    std::filesystem::create_directory(directory.File("out"));
    for (int k = 0; k < kFiles; ++k) {
      LoadPlainly(field, directory.File(NameOf(k)));
      plain::RejectFaultyVectors<double>(field, criteria);
      plain::Interpolate<double>(field);
      plain::ApplyFilterKernel<double>(field, gauss);
      SavePlainly(field, directory.File("out/" + std::to_string(k) + ".vas"));
    }
  }
  state.SetItemsProcessed(state.iterations() * kFiles);
}
BENCHMARK(WholeJobPlain)->Name("WholeJob/plain")->ArgName("aligned")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

MacroEventList JobMacro(const std::string& collection) {
  MacroEvent search(30001);
  for (const char* key : {"ChkAbsInterval", "ChkDirDeviation", "ChkXComp", "ChkYComp"}) search.Set(key, 0);
  for (const char* key : {"OptAbsIntOut", "OptXCompIntOut", "OptYCompIntOut", "LogicalOr"}) search.Set(key, true);
  for (const char* key : {"TxtAbsIntMin", "TxtAbsIntMax", "TxtDirDeviation", "TxtXCompIntMin", "TxtXCompIntMax",
                          "TxtYCompIntMin", "TxtYCompIntMax", "TxtUserVectorX", "TxtUserVectorY"}) {
    search.Set(key, std::string("0"));
  }
  search.Set("ChkAbsDeviation", 1);
  search.Set("TxtAbsDeviation", std::string("30"));
  search.Set("CompareVectorType", 3);
  search.Set("CboMedianX", 2);
  search.Set("CboMedianY", 2);
  MacroEvent save(10001);
  save.Set("Prefix", std::string("out/"));
  save.Set("Postfix", std::string());
  MacroEvent collect(60001);
  collect.Set("FileName", collection);
  return {search, MacroEvent(40001), MacroEvent(40103), save, collect};
}

void WholeJobRun(benchmark::State& state) {
  const ScratchDirectory directory;
  WriteSeries(state, directory);
  BenchSession bench;
  for (int k = 0; k < kFiles; ++k) bench.session.selectedFiles.push_back(NameOf(k));
  bench.session.inputDirectory = directory.Path() + "/";
  bench.session.macro = JobMacro(directory.File("out/all.col"));
  for (auto _ : state) {
    RemoveResults(state, directory);
    bench.ui.progress.clear();
    RunMacro(bench.session);
  }
  if (bench.context.runHadError) state.SkipWithError("run failed");
  state.SetItemsProcessed(state.iterations() * kFiles);
}
BENCHMARK(WholeJobRun)->Name("WholeJob/run")->ArgName("aligned")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void WholeJobBytes(benchmark::State& state) {
  constexpr std::size_t vasBytes = 20 * 125 * 100 + 8 * (125 + 100) + 600, recordBytes = 128 + 16 * 125 * 100 + 1563;
  const ScratchDirectory directory;
  WriteSeries(state, directory);
  std::vector<char> source(std::size_t{1} << 20);
  const std::string result(vasBytes, 'x');
  for (auto _ : state) {
    RemoveResults(state, directory);
    std::filesystem::create_directory(directory.File("out"));
    for (int k = 0; k < kFiles; ++k) {
      ReadPlainly(directory.File(NameOf(k)), source);
      WritePlainly(directory.File("out/" + std::to_string(k) + ".vas"), result);
      const int collection =
          ::open(directory.File("out/all.col").c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
      if (::write(collection, result.data(), recordBytes) < 0) std::abort();
      ::close(collection);
    }
  }
  state.SetItemsProcessed(state.iterations() * kFiles);
}
BENCHMARK(WholeJobBytes)
    ->Name("WholeJob/plain_bytes")
    ->ArgName("aligned")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace quiverion::bench
