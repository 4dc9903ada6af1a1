// Text exports compared with snprintf, line by line. The files are new in every round.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <filesystem>

#include "bench_support.h"
#include "export/text_exports.h"
#include "support/random_fields.h"

namespace quiverion::bench {
namespace {

constexpr test::Mix kRough = {.invalid = 50};

VectorField FieldOf(const benchmark::State& state) {
  return test::RandomField(1, static_cast<std::int32_t>(state.range(0)), static_cast<std::int32_t>(state.range(1)),
                           kRough);
}

using Operation = void (*)(Context&, const std::string&);

template <Operation operation>
void Export(benchmark::State& state) {
  const ScratchDirectory directory;
  const std::string path = directory.File("export.txt");
  BenchSession bench;
  bench.context.field = FieldOf(state);
  std::int64_t bytes = 0;
  for (auto _ : state) {
    operation(bench.context, path);
    state.PauseTiming();
    bytes += static_cast<std::int64_t>(std::filesystem::file_size(path));
    std::filesystem::remove(path);
    state.ResumeTiming();
  }
  if (bench.context.runHadError) state.SkipWithError("export failed");
  state.SetBytesProcessed(bytes);
}

void PlainVectorField(benchmark::State& state) {
  const ScratchDirectory directory;
  const std::string path = directory.File("export.txt");
  const VectorField field = FieldOf(state);
  std::int64_t bytes = 0;
  for (auto _ : state) {
    std::FILE* const file = std::fopen(path.c_str(), "wb");
    for (std::int32_t j = 1; j <= field.rowCount; ++j) {
      for (std::int32_t i = 1; i <= field.columnCount; ++i) {
        if (field.status(i, j) <= 0) continue;
        const double u = field.velX(i, j), v = field.velY(i, j);
        char line[200];
        const int length = std::snprintf(line, sizeof line, " %.15g \t %.15g \t %.15g \t %.15g \t %.15g \r\n",
                                         field.posX[static_cast<std::size_t>(i - 1)],
                                         field.posY[static_cast<std::size_t>(j - 1)], u, v, std::sqrt(u * u + v * v));
        std::fwrite(line, 1, static_cast<std::size_t>(length), file);
      }
    }
    std::fclose(file);
    state.PauseTiming();
    bytes += static_cast<std::int64_t>(std::filesystem::file_size(path));
    std::filesystem::remove(path);
    state.ResumeTiming();
  }
  state.SetBytesProcessed(bytes);
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgNames({"columns", "rows"})->Args({125, 100})->Args({400, 400})->Unit(benchmark::kMicrosecond);
}
BENCHMARK(PlainVectorField)->Name("Export/snprintf")->Apply(Sizes);
BENCHMARK(Export<ExportStanfordVectorField>)->Name("Export/StanfordVectorField")->Apply(Sizes);
BENCHMARK(Export<ExportMatlabVectorField>)->Name("Export/MatlabVectorField")->Apply(Sizes);
BENCHMARK(Export<ExportStanfordVorticity>)->Name("Export/StanfordVorticity")->Apply(Sizes);
BENCHMARK(Export<ExportTecPlotSwirl>)->Name("Export/TecPlotSwirl")->Apply(Sizes);
BENCHMARK(Export<ExportStanfordVelocityProfile>)->Name("Export/VelocityProfile")->Apply(Sizes);

}  // namespace
}  // namespace quiverion::bench
