// Loading and saving compared with one plain read or write of the same bytes. The page cache is warm.
#include <benchmark/benchmark.h>

#include "bench_support.h"
#include "field/formats/load_original_file.h"
#include "field/formats/vas_file.h"
#include "generator/sample_field.h"
#include "generator/sample_files.h"
#include "log/log_writers.h"
#include "platform/files/result_file.h"

namespace quiverion::bench {
namespace {

enum Kind : std::int64_t { kVas, kDat, kVec1, kVec2, kVec3 };

samples::SampleField SampleOf(const benchmark::State& state) {
  samples::SampleOptions options;
  options.columns = static_cast<int>(state.range(1));
  options.rows = static_cast<int>(state.range(2));
  return samples::MakeSampleField(options);
}

std::string NameOf(std::int64_t kind) {
  return kind == kVas ? "f.vas" : kind == kDat ? "f.dat" : "f.vec";
}

std::string BytesOf(std::int64_t kind, const samples::SampleField& field) {
  switch (kind) {
    case kVas:
      return samples::VasBytes(field);
    case kDat:
      return samples::DatBytes(field);
    default:
      return samples::VecBytes(field, static_cast<int>(kind - kVec1 + 1));
  }
}

void SetBytes(benchmark::State& state, std::size_t bytes) {
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(bytes));
}

// The files of a series. Together they are larger than the processor's caches, so that they are only in the page cache,
// like those of a real series.
class Series {
 public:
  Series(std::int64_t kind, const std::string& bytes) : size_(bytes.size()) {
    constexpr std::size_t total = 128 * 1024 * 1024;
    for (std::size_t k = 0; k * size_ < total; ++k) {
      paths_.push_back(directory_.File(std::to_string(k) + NameOf(kind)));
      WritePlainly(paths_.back(), bytes);
    }
  }
  const std::string& Next() { return paths_[at_++ % paths_.size()]; }
  std::size_t FileSize() const { return size_; }

 private:
  ScratchDirectory directory_;
  std::vector<std::string> paths_;
  std::size_t size_;
  std::size_t at_ = 0;
};

void PlainRead(benchmark::State& state) {
  Series series(state.range(0), BytesOf(state.range(0), SampleOf(state)));
  std::vector<char> target(series.FileSize());
  for (auto _ : state) benchmark::DoNotOptimize(ReadPlainly(series.Next(), target));
  SetBytes(state, series.FileSize());
}

void Load(benchmark::State& state) {
  Series series(state.range(0), BytesOf(state.range(0), SampleOf(state)));
  BenchSession bench;
  for (auto _ : state) {
    LoadOriginalFile(bench.context, series.Next());
    if (bench.context.abortCurrentFile) state.SkipWithError("load failed");
  }
  SetBytes(state, series.FileSize());
}

void LoadArguments(benchmark::internal::Benchmark* benchmark) {
  for (const std::int64_t kind : {kVas, kDat, kVec1, kVec2, kVec3}) {
    benchmark->Args({kind, 125, 100})->Args({kind, 400, 300});
  }
  benchmark->ArgNames({"kind", "columns", "rows"});
}

BENCHMARK(PlainRead)->Apply(LoadArguments);
BENCHMARK(Load)->Apply(LoadArguments);

// The shapes of DAT lines that programs write; bytes per second make them comparable. "%.18e" is numpy.savetxt.
struct NamedShape {
  const char* name;
  samples::DatShape shape;
};
const NamedShape kShapes[] = {
    {"Korvo", {}},
    {"Korvo_LF", {.lineEnd = "\n"}},
    {"12_columns", {.columns = 12}},
    {"20_columns", {.columns = 20}},
    {"%9.4f", {.width = 9, .positionDecimals = 1, .decimals = 4}},
    {"%9.4f_LF", {.width = 9, .positionDecimals = 1, .decimals = 4, .lineEnd = "\n"}},
    {"%13.6f", {.width = 13, .positionDecimals = 6, .decimals = 6}},
    {"%.10f", {.positionDecimals = 10, .decimals = 10, .lineEnd = "\n"}},
    {"%.17f", {.decimals = 17}},
    {"%.6e", {.decimals = 6, .exponents = true}},
    {"%15.7e", {.width = 15, .decimals = 7, .exponents = true}},
    {"%.18e", {.decimals = 18, .exponents = true, .lineEnd = "\n"}},
};

void LoadShape(benchmark::State& state, const samples::DatShape& shape) {
  Series series(kDat, samples::DatBytes(samples::MakeSampleField({}), shape));
  BenchSession bench;
  for (auto _ : state) {
    LoadOriginalFile(bench.context, series.Next());
    if (bench.context.abortCurrentFile) state.SkipWithError("load failed");
  }
  SetBytes(state, series.FileSize());
}

const bool kShapesAreMeasured = [] {
  for (const NamedShape& named : kShapes) {
    benchmark::RegisterBenchmark(("LoadShape/" + std::string(named.name)).c_str(), LoadShape, named.shape);
  }
  return true;
}();

// A file in which every vector has a status that a VEC file should not have: 2 log pieces per vector.
std::string WarningBytes() {
  samples::SampleOptions options;
  options.columns = options.rows = 128;
  std::string bytes = samples::VecBytes(samples::MakeSampleField(options), 1);
  const float five = 5.0f;
  for (std::size_t p = 0; p < 128 * 128; ++p) {
    std::copy_n(reinterpret_cast<const char*>(&five), sizeof five,
                bytes.begin() + static_cast<std::ptrdiff_t>(256 + 4 * p));
  }
  return bytes;
}

// range(0): 0 no log, 1 the log as plain text in a file, 2 as RTF.
void LoadWithWarnings(benchmark::State& state) {
  const ScratchDirectory directory;
  const std::string path = directory.File("warnings.vec");
  WritePlainly(path, WarningBytes());
  BenchSession bench;
  for (auto _ : state) {
    if (state.range(0) == 0) {
      LoadOriginalFile(bench.context, path);
      continue;
    }
    ResultFile file(*bench.files, nullptr, directory.File("log"));
    const auto consume = [&file](std::string_view bytes) { file.Write(bytes); };
    PlainTextWriter plain(consume);
    RtfWriter rtf(consume);
    LogSink& sink = state.range(0) == 1 ? static_cast<LogSink&>(plain) : rtf;
    bench.log.Attach(sink);
    LoadOriginalFile(bench.context, path);
    bench.log.Detach(sink);
    if (state.range(0) == 1) {
      plain.HandOver();
    } else {
      rtf.Finish();
    }
    file.Commit();
    state.PauseTiming();
    std::filesystem::remove(directory.File("log"));
    state.ResumeTiming();
  }
}
BENCHMARK(LoadWithWarnings)->ArgName("log")->Arg(0)->Arg(1)->Arg(2);

// New files in both: every iteration writes a name that did not exist.
void PlainSave(benchmark::State& state) {
  const ScratchDirectory directory;
  const std::string bytes = BytesOf(kVas, SampleOf(state));
  const std::string temporary = directory.File("t");
  const std::string path = directory.File("f.vas");
  for (auto _ : state) {
    WritePlainly(temporary, bytes);
    std::rename(temporary.c_str(), path.c_str());
    state.PauseTiming();
    std::filesystem::remove(path);
    state.ResumeTiming();
  }
  SetBytes(state, bytes.size());
}

void Save(benchmark::State& state) {
  const ScratchDirectory directory;
  const std::string bytes = BytesOf(kVas, SampleOf(state));
  const std::string source = directory.File("source.vas");
  const std::string path = directory.File("f.vas");
  WritePlainly(source, bytes);
  BenchSession bench;
  LoadOriginalFile(bench.context, source);
  for (auto _ : state) {
    SaveVas(bench.context, path);
    state.PauseTiming();
    std::filesystem::remove(path);
    state.ResumeTiming();
  }
  if (bench.context.runHadError) state.SkipWithError("save failed");
  SetBytes(state, bytes.size());
}
BENCHMARK(PlainSave)->Args({kVas, 125, 100})->Args({kVas, 400, 300})->ArgNames({"kind", "columns", "rows"});
BENCHMARK(Save)->Args({kVas, 125, 100})->Args({kVas, 400, 300})->ArgNames({"kind", "columns", "rows"});

}  // namespace
}  // namespace quiverion::bench
