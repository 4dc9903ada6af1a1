// The numerical commands: the plain loops of the definition compared with the fast forms, over the same fields.
#include <benchmark/benchmark.h>

#include "operations/commands/filters.h"
#include "operations/kernels/derived_scalar.h"
#include "operations/kernels/faulty_vectors.h"
#include "operations/kernels/faulty_vectors_plain.h"
#include "operations/kernels/filter_kernel.h"
#include "operations/kernels/filters_plain.h"
#include "operations/kernels/interpolation.h"
#include "operations/kernels/interpolation_plain.h"
#include "operations/kernels/vortex_maxima.h"
#include "operations/kernels/vortex_maxima_plain.h"
#include "platform/process/environment.h"
#include "support/random_fields.h"

namespace quiverion::bench {
namespace {

// Args: columns, rows, window width (0 if there is none). Every iteration works on a fresh copy; the copying is not
// measured.
template <class Action>
void OnField(benchmark::State& state, const VectorField& original, Action action) {
  for (auto _ : state) {
    state.PauseTiming();
    VectorField field = original;
    state.ResumeTiming();
    action(field);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0) * state.range(1));
}

// A rough field with 5 % invalid vectors.
VectorField FieldOf(const benchmark::State& state) {
  return test::RandomField(7, static_cast<std::int32_t>(state.range(0)), static_cast<std::int32_t>(state.range(1)),
                           {.invalid = 50});
}

template <class Apply>
void Filter(benchmark::State& state, Apply apply) {
  const auto half = static_cast<std::int32_t>(state.range(2) / 2);
  const WeightMatrix weights(-half, half, -half, half, 1.0);
  OnField(state, FieldOf(state), [&](VectorField& field) { apply(field, weights); });
}

template <class Apply>
void Profile(benchmark::State& state, Apply apply) {
  const auto reach = static_cast<std::int32_t>(state.range(0)) - 1;
  const WeightMatrix weights(-reach, reach, 0, 0, 1.0);
  OnField(state, FieldOf(state), [&](VectorField& field) { apply(field, weights); });
}

// Holes as a real evaluation leaves them: single vectors and patches up to 12 wide.
VectorField FieldWithHoles(const benchmark::State& state) {
  VectorField field = FieldOf(state);
  for (std::int32_t& status : field.status.Values()) status = status < 0 ? 0 : status;
  std::mt19937_64 random(3);
  const auto patches = field.status.Values().size() / 1500;
  for (std::size_t patch = 0; patch < patches; ++patch) {
    const auto size = static_cast<std::int32_t>(random() % 12) + 1;
    const auto i0 = static_cast<std::int32_t>(random() % static_cast<std::uint64_t>(field.columnCount - size));
    const auto j0 = static_cast<std::int32_t>(random() % static_cast<std::uint64_t>(field.rowCount - size));
    for (std::int32_t i = 1; i <= size; ++i) {
      for (std::int32_t j = 1; j <= size; ++j) field.status(i0 + i, j0 + j) = 0;
    }
  }
  return field;
}

// One hole over 60 % of the field: its time is in proportion to its size, not to its size times its depth.
VectorField FieldWithOneHole(const benchmark::State& state) {
  VectorField field = FieldOf(state);
  const auto edge = [](std::int32_t count) { return static_cast<std::int32_t>(count * 0.113); };
  for (std::int32_t i = 1 + edge(field.columnCount); i <= field.columnCount - edge(field.columnCount); ++i) {
    for (std::int32_t j = 1 + edge(field.rowCount); j <= field.rowCount - edge(field.rowCount); ++j) {
      field.status(i, j) = 0;
    }
  }
  return field;
}

template <class Apply>
void Search(benchmark::State& state, CompareVectorType type, bool direction, Apply apply) {
  FaultyVectorCriteria criteria;
  criteria.magnitudeDeviation = true;
  criteria.magnitudePercent = 30.0;
  criteria.directionDeviation = direction;
  criteria.directionDegrees = 30.0;
  criteria.compareVectorType = type;
  criteria.halfWidthX = criteria.halfWidthY = static_cast<std::int32_t>(state.range(2) / 2);
  OnField(state, FieldOf(state), [&](VectorField& field) { apply(field, criteria); });
}

template <class Mark>
void Maxima(benchmark::State& state, Mark mark) {
  VectorField field = FieldOf(state);
  CalcSwirlingStrength(field);
  Grid<std::int16_t> marks(field.columnCount, field.rowCount);
  for (auto _ : state) {
    mark(field.derivedScalar, marks);
    benchmark::ClobberMemory();
  }
}

using Benchmark = benchmark::internal::Benchmark;
constexpr std::int64_t kGrids[][2] = {{64, 64}, {125, 100}, {400, 400}, {1000, 1000}};

// Every grid and window whose plain loops take less than `most` steps.
void Arguments(Benchmark* benchmark, std::initializer_list<std::int64_t> windows, double most, double stepsPerPoint) {
  benchmark->ArgNames({"columns", "rows", "window"})->Unit(benchmark::kMicrosecond);
  for (const auto& [columns, rows] : kGrids) {
    for (const std::int64_t window : windows) {
      const double places = static_cast<double>(window * window);
      const double steps =
          static_cast<double>(columns * rows) * (stepsPerPoint > 0 ? places * stepsPerPoint : places * places);
      if (steps <= most) benchmark->Args({columns, rows, window});
    }
  }
}

constexpr double kAnySize = 1e300;
constexpr double kPatience = 4e10;
constexpr auto kSortSteps = 0.0;  // of a selection sort: the square of the window

void NoWindow(Benchmark* b) {
  Arguments(b, {1}, kAnySize, 1);
}
void FilterWindows(Benchmark* b) {
  Arguments(b, {3, 5}, kAnySize, 1);
}
void AllWindows(Benchmark* b) {
  Arguments(b, {3, 5, 11, 21, 101}, kAnySize, 1);
}
void PlainMeanWindows(Benchmark* b) {
  Arguments(b, {3, 5, 11, 21, 101}, kPatience / 20, 1);
}
void PlainMedianWindows(Benchmark* b) {
  Arguments(b, {3, 5, 11, 21}, kPatience, kSortSteps);
}
void WholeFieldWindow(Benchmark* b) {
  b->ArgNames({"columns", "rows", "window"})->Unit(benchmark::kMicrosecond);
  for (const auto& [columns, rows] : kGrids) {
    if (columns < 1000) b->Args({columns, rows, 399});
  }
}

const auto kPlainFilter = plain::ApplyFilterKernel<double>;
const auto kPlainSearch = plain::RejectFaultyVectors<double>;

// Registers the plain and the fast form of one command under one name.
template <class Body, class Plain, class Fast>
void Register(const std::string& name, Body body, Plain plain, void (*plainSizes)(Benchmark*), Fast fast,
              void (*fastSizes)(Benchmark*)) {
  using benchmark::RegisterBenchmark;
  RegisterBenchmark((name + "/plain").c_str(), [=](benchmark::State& state) { body(state, plain); })->Apply(plainSizes);
  RegisterBenchmark((name + "/fast").c_str(), [=](benchmark::State& state) { body(state, fast); })->Apply(fastSizes);
}

void RegisterSearch(const std::string& name, CompareVectorType type, bool direction, void (*plainSizes)(Benchmark*)) {
  Register(
      name, [=](benchmark::State& state, auto apply) { Search(state, type, direction, apply); }, kPlainSearch,
      plainSizes, RejectFaultyVectors, AllWindows);
}

const bool kRegistered = [] {
  PrepareProcess();  // as the program does
  Register(
      "Filter", [](auto& state, auto apply) { Filter(state, apply); }, kPlainFilter, FilterWindows, ApplyFilterKernel,
      FilterWindows);
  Register(
      "VelocityProfile", [](auto& state, auto apply) { Profile(state, apply); }, kPlainFilter, NoWindow,
      ApplyFilterKernel, NoWindow);
  Register(
      "Interpolation", [](auto& state, auto apply) { OnField(state, FieldWithHoles(state), apply); },
      plain::Interpolate<double>, NoWindow, Interpolate, NoWindow);
  Register(
      "Interpolation60", [](auto& state, auto apply) { OnField(state, FieldWithOneHole(state), apply); },
      plain::Interpolate<double>, NoWindow, Interpolate, NoWindow);
  Register(
      "VortexMaxima", [](auto& state, auto apply) { Maxima(state, apply); }, plain::MarkMaxima, NoWindow, MarkMaxima,
      NoWindow);
  RegisterSearch("Median", CompareVectorType::median, false, PlainMedianWindows);
  RegisterSearch("MedianDirection", CompareVectorType::median, true, PlainMedianWindows);
  RegisterSearch("LocalMean", CompareVectorType::localMean, false, PlainMeanWindows);
  RegisterSearch("LocalMeanDirection", CompareVectorType::localMean, true, PlainMeanWindows);
  benchmark::RegisterBenchmark("Median/fast", [](benchmark::State& state) {
    Search(state, CompareVectorType::median, false, RejectFaultyVectors);
  })->Apply(WholeFieldWindow);
  return true;
}();

}  // namespace
}  // namespace quiverion::bench
