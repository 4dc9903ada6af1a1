// Collections and statistics compared with plain reads and writes of the same bytes. The page cache is warm.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <numeric>

#include "bench_support.h"
#include "statistics/collect.h"
#include "statistics/collection_contents.h"
#include "statistics/compute_statistic.h"
#include "support/random_fields.h"

namespace quiverion::bench {
namespace {

constexpr test::Mix kRough = {.invalid = 50};

// range(0) fields of range(1) x range(2) vectors.
struct Series {
  explicit Series(const benchmark::State& state)
      : fields(static_cast<int>(state.range(0))),
        columns(static_cast<std::int32_t>(state.range(1))),
        rows(static_cast<std::int32_t>(state.range(2))) {}

  std::size_t RecordBytes() const {
    const auto vectors = static_cast<std::uint64_t>(columns) * static_cast<std::uint64_t>(rows);
    return static_cast<std::size_t>(collection::RecordBytes(vectors));
  }
  void Collect(Context& context, const std::string& path, int count) const {
    for (int k = 0; k < count; ++k) {
      context.field = test::RandomField(static_cast<std::uint64_t>(k + 1), columns, rows, kRough);
      CollectForStatistics(context, path);
    }
    if (context.runHadError) std::abort();
  }

  int fields;
  std::int32_t columns, rows;
};

void Sizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgNames({"fields", "columns", "rows"})->Unit(benchmark::kMillisecond);
  benchmark->Args({500, 125, 100})->Args({40, 400, 400});
}

// The yardstick of a pass: reads each record once into the same memory.
void PlainPass(benchmark::State& state) {
  const ScratchDirectory directory;
  const Series series(state);
  BenchSession bench;
  series.Collect(bench.context, directory.File("c.col"), series.fields);
  std::vector<char> record(series.RecordBytes());
  for (auto _ : state) {
    const int descriptor = ::open(directory.File("c.col").c_str(), O_RDONLY | O_CLOEXEC);
    for (int k = 0; k < series.fields; ++k) {
      if (::read(descriptor, record.data(), record.size()) < 0) std::abort();
      benchmark::DoNotOptimize(record.data());
    }
    ::close(descriptor);
  }
}
BENCHMARK(PlainPass)->Name("Statistic/plain_read")->Apply(Sizes);

template <StatisticKind kind>
void Compute(benchmark::State& state) {
  const ScratchDirectory directory;
  const Series series(state);
  BenchSession bench;
  series.Collect(bench.context, directory.File("c.col"), series.fields);
  for (auto _ : state) {
    bench.ui.computation.clear();
    ComputeStatistic(bench.context, kind, directory.File("c.col"), directory.File("r.vas"), 15E-6);
    state.PauseTiming();
    std::filesystem::remove(directory.File("r.vas"));  // a file that replaces another is synced to the disk
    state.ResumeTiming();
  }
  if (bench.context.runHadError || !bench.ui.messages.empty()) state.SkipWithError("statistic failed");
}
BENCHMARK(Compute<StatisticKind::mean>)->Name("Statistic/mean")->Apply(Sizes);
BENCHMARK(Compute<StatisticKind::standardDeviation>)->Name("Statistic/stddev")->Apply(Sizes);
BENCHMARK(Compute<StatisticKind::fluctuationProduct>)->Name("Statistic/product")->Apply(Sizes);
BENCHMARK(Compute<StatisticKind::turbulence>)->Name("Statistic/turbulence")->Apply(Sizes);
BENCHMARK(Compute<StatisticKind::dissipation>)->Name("Statistic/dissipation")->Apply(Sizes);

// Restores `path`, with the timer paused, to its state before a round of appends or a removal.
template <class Restore>
void Pause(benchmark::State& state, const std::string& path, Restore restore) {
  state.PauseTiming();
  const int descriptor = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
  restore(descriptor);
  ::close(descriptor);
  state.ResumeTiming();
}

// range(0): records in the file before. After as many appends, the file gets its old length and count.
constexpr int kAppends = 100;

void AppendSizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgNames({"fields", "columns", "rows"})->Unit(benchmark::kMicrosecond)->Iterations(30);
  benchmark->Args({1, 125, 100})->Args({500, 125, 100})->Args({1, 400, 400});
}

using Appending = void (*)(Context& context, const std::string& path, const std::string& record);

template <Appending append>
void Append(benchmark::State& state) {
  const ScratchDirectory directory;
  const Series series(state);
  BenchSession bench;
  const std::string path = directory.File("c.col"), record(series.RecordBytes(), 'x');
  series.Collect(bench.context, path, series.fields);
  const std::string header = ReadWholeFile(*bench.files, path).substr(0, collection::kHeaderBytes);
  const auto length = static_cast<off_t>(std::filesystem::file_size(path));
  for (auto _ : state) {
    for (int k = 0; k < kAppends; ++k) append(bench.context, path, record);
    Pause(state, path, [&](int descriptor) {
      if (::ftruncate(descriptor, length) != 0 || ::pwrite(descriptor, header.data(), header.size(), 0) < 0)
        std::abort();
    });
  }
  if (bench.context.runHadError) state.SkipWithError("append failed");
  state.SetItemsProcessed(state.iterations() * kAppends);
  state.SetBytesProcessed(state.items_processed() * static_cast<std::int64_t>(series.RecordBytes()));
}

void AppendPlainly(Context& /*context*/, const std::string& path, const std::string& record) {
  const int descriptor = ::open(path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
  if (::write(descriptor, record.data(), record.size()) < 0) std::abort();
  ::close(descriptor);
}

void AppendField(Context& context, const std::string& path, const std::string& /*record*/) {
  CollectForStatistics(context, path);
}
BENCHMARK(Append<AppendPlainly>)->Name("Append/plain_write")->Apply(AppendSizes);
BENCHMARK(Append<AppendField>)->Name("Append/collect")->Apply(AppendSizes);

// Removes the first range(3) records: as many move from the end, then the file is truncated.
void RemovalSizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgNames({"fields", "columns", "rows", "removed"})->Unit(benchmark::kMicrosecond)->Iterations(10);
  benchmark->Args({200, 125, 100, 1})->Args({200, 125, 100, 90})->Args({2000, 64, 64, 100});
}

using Removing = void (*)(Context& context, const std::string& path, const Series& series, int count);

template <Removing remove>
void Removal(benchmark::State& state) {
  const ScratchDirectory directory;
  const Series series(state);
  BenchSession bench;
  const std::string path = directory.File("c.col"), whole = directory.File("whole.col");
  series.Collect(bench.context, whole, series.fields);
  for (auto _ : state) {
    state.PauseTiming();
    std::filesystem::copy_file(whole, path, std::filesystem::copy_options::overwrite_existing);
    state.ResumeTiming();
    // Sync first: truncating a file whose blocks are not allocated on the disk yet waits for the allocation.
    Pause(state, path, [](int descriptor) { ::fsync(descriptor); });
    remove(bench.context, path, series, static_cast<int>(state.range(3)));
  }
}

void MovePlainly(Context& /*context*/, const std::string& path, const Series& series, int count) {
  std::string record(series.RecordBytes(), ' ');
  const auto size = static_cast<off_t>(record.size());
  const int descriptor = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
  for (int k = 0; k < count; ++k) {
    if (::pread(descriptor, record.data(), record.size(), 75 + (series.fields - 1 - k) * size) < 0 ||
        ::pwrite(descriptor, record.data(), record.size(), 75 + k * size) < 0) {
      std::abort();
    }
  }
  if (::ftruncate(descriptor, 75 + (series.fields - count) * size) != 0) std::abort();
  ::close(descriptor);
}

void RemoveFirst(Context& context, const std::string& path, const Series& /*series*/, int count) {
  std::vector<std::int32_t> numbers(static_cast<std::size_t>(count));
  std::iota(numbers.begin(), numbers.end(), 1);
  if (RemoveRecords(context, path, numbers) != RemovalOutcome::removed) std::abort();
}
BENCHMARK(Removal<MovePlainly>)->Name("Removal/plain_move")->Apply(RemovalSizes);
BENCHMARK(Removal<RemoveFirst>)->Name("Removal/remove")->Apply(RemovalSizes);

}  // namespace
}  // namespace quiverion::bench
