// Files of other programs compared with a plain read of the same bytes, exports compared with a plain write, and packed
// files compared with the inflate of their bytes. The page cache is warm.
#include <benchmark/benchmark.h>
#include <zlib.h>

#include <cstring>
#include <filesystem>

#include "bench_support.h"
#include "exchange/import_file.h"
#include "exchange/writers.h"
#include "generator/foreign_files.h"
#include "platform/files/result_file.h"
#include "platform/process/environment.h"
#include "support/random_fields.h"

namespace quiverion::bench {
namespace {

constexpr std::string_view kTexts[] = {"openpiv5.txt", "openpiv6.txt", "jpiv.jvc",   "pivlab.txt",  "pivlab_wide.txt",
                                       "pivlab.dat",   "insight.vec",  "davis8.txt", "davis10.txt", "davis.dat",
                                       "pivview.dat",  "block.dat",    "table.csv"};
constexpr std::string_view kPacked[] = {"vc7_2.vc7", "vc7_3.vc7", "vc7_5.vc7"};

std::string BytesOf(std::string_view name, std::int64_t size) {
  const int side = static_cast<int>(size);
  return samples::ForeignSampleOf(name).bytes(samples::MakeSampleField({.columns = side, .rows = side}));
}

void SetBytes(benchmark::State& state, std::size_t bytes) {
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(bytes));
}

void Import(benchmark::State& state, std::string_view name) {
  const ScratchDirectory directory;
  const std::string path = directory.File(name);
  const std::string bytes = BytesOf(name, state.range(0));
  WritePlainly(path, bytes);
  BenchSession bench;
  PrepareProcess();
  for (auto _ : state) benchmark::DoNotOptimize(exchange::ReadForeignFile(*bench.files, path, {}));
  SetBytes(state, bytes.size());
}

void PlainImport(benchmark::State& state, std::string_view name) {
  const ScratchDirectory directory;
  const std::string path = directory.File(name);
  const std::string bytes = BytesOf(name, state.range(0));
  WritePlainly(path, bytes);
  std::vector<char> target(bytes.size());
  for (auto _ : state) benchmark::DoNotOptimize(ReadPlainly(path, target));
  SetBytes(state, bytes.size());
}

// The inflate of a packed file's planes alone.
void Inflate(benchmark::State& state, std::string_view name) {
  const std::string bytes = BytesOf(name, state.range(0));
  std::int32_t size = 0;
  std::memcpy(&size, bytes.data() + 256, sizeof size);
  std::vector<char> target(1);
  const auto inflate = [&] {
    uLongf length = target.size();
    return uncompress(reinterpret_cast<Bytef*>(target.data()), &length,
                      reinterpret_cast<const Bytef*>(bytes.data() + 260), static_cast<uLong>(size));
  };
  while (inflate() == Z_BUF_ERROR) target.resize(2 * target.size());
  for (auto _ : state) benchmark::DoNotOptimize(inflate());
  SetBytes(state, bytes.size());
}

VectorField FieldOf(const benchmark::State& state) {
  const auto columns = static_cast<std::int32_t>(state.range(0)), rows = static_cast<std::int32_t>(state.range(1));
  VectorField field = test::RandomField(1, columns, rows, {.invalid = 50});
  for (std::size_t k = 0; k < field.posX.size(); ++k) field.posX[k] = 0.1 * static_cast<double>(k);
  for (std::size_t k = 0; k < field.posY.size(); ++k) field.posY[k] = -0.1 * static_cast<double>(k);
  return field;
}

template <class Write>
void WriteNewFiles(benchmark::State& state, Write write) {
  const ScratchDirectory directory;
  const std::string path = directory.File("export");
  std::size_t bytes = 0;
  for (auto _ : state) {
    write(path);
    state.PauseTiming();
    bytes = std::filesystem::file_size(path);
    std::filesystem::remove(path);
    state.ResumeTiming();
  }
  SetBytes(state, bytes);
}

void Export(benchmark::State& state, const exchange::ExportKind& kind) {
  BenchSession bench;
  PrepareProcess();
  const VectorField field = FieldOf(state);
  WriteNewFiles(state, [&](const std::string& path) {
    const auto failure = SaveResult(*bench.files, nullptr, path,
                                    [&](ResultFile& file) { kind.write(file, field, exchange::PlaceInSeries(1, 0)); });
    if (failure) state.SkipWithError("export failed");
  });
}

// What the export of this kind writes, in one piece: plainly, or as every result is written, whole or not at all.
void PlainExport(benchmark::State& state, const exchange::ExportKind& kind, bool asResult) {
  const ScratchDirectory directory;
  BenchSession bench;
  const VectorField field = FieldOf(state);
  SaveResult(*bench.files, nullptr, directory.File("once"),
             [&](ResultFile& file) { kind.write(file, field, exchange::PlaceInSeries(1, 0)); });
  const std::string bytes = ReadWholeFile(*bench.files, directory.File("once"));
  WriteNewFiles(state, [&](const std::string& path) {
    if (!asResult) return WritePlainly(path, bytes);
    SaveResult(*bench.files, nullptr, path, [&](ResultFile& file) { file.Write(bytes); });
  });
}

void Register(const std::string& name, auto function) {
  benchmark::RegisterBenchmark(name.c_str(), function)->Arg(100)->Arg(700)->Unit(benchmark::kMicrosecond);
}

void RegisterExport(const std::string& name, auto function) {
  auto* const bench = benchmark::RegisterBenchmark(name.c_str(), function);
  bench->Args({125, 100})->Args({400, 400})->Args({700, 700})->Unit(benchmark::kMicrosecond);
}

const bool kRegistered = [] {
  for (const std::string_view name : kTexts) {
    Register("Import/plain_read/" + std::string(name), [name](benchmark::State& state) { PlainImport(state, name); });
    Register("Import/" + std::string(name), [name](benchmark::State& state) { Import(state, name); });
  }
  for (const std::string_view name : kPacked) {
    Register("Import/inflate/" + std::string(name), [name](benchmark::State& state) { Inflate(state, name); });
    Register("Import/" + std::string(name), [name](benchmark::State& state) { Import(state, name); });
  }
  for (const exchange::ExportKind& kind : exchange::ExportKinds()) {
    RegisterExport("Export/plain_write/" + std::string(kind.name),
                   [&](benchmark::State& state) { PlainExport(state, kind, false); });
    RegisterExport("Export/result_write/" + std::string(kind.name),
                   [&](benchmark::State& state) { PlainExport(state, kind, true); });
    RegisterExport("Export/" + std::string(kind.name), [&](benchmark::State& state) { Export(state, kind); });
  }
  return true;
}();

}  // namespace
}  // namespace quiverion::bench
