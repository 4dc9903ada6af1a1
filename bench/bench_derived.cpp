// Vorticity and swirling strength: the plain loops of the definition compared with the fast kernels.
#include <benchmark/benchmark.h>

#include "operations/kernels/derived_scalar.h"
#include "operations/kernels/derived_scalar_plain.h"
#include "support/field_builder.h"

namespace quiverion::bench {
namespace {

// A rough field with 5 % invalid vectors.
VectorField MakeRoughField(std::int32_t columns, std::int32_t rows) {
  VectorField field = test::MakeField(columns, rows);
  std::mt19937_64 random(7);
  for (double& u : field.velX.Values()) u = test::Uniform(random, -5, 5);
  for (double& v : field.velY.Values()) v = test::Uniform(random, -5, 5);
  for (std::int32_t& status : field.status.Values()) status = random() % 20 == 0 ? 0 : 1;
  return field;
}

template <double (*formula)(const plain::VelocityGradient<double>&)>
void Plain(benchmark::State& state) {
  VectorField field =
      MakeRoughField(static_cast<std::int32_t>(state.range(0)), static_cast<std::int32_t>(state.range(1)));
  for (auto _ : state) {
    plain::ComputeDerived<double>(field, field.derivedScalar, formula);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0) * state.range(1));
}

template <void (*calculate)(VectorField&)>
void Fast(benchmark::State& state) {
  VectorField field =
      MakeRoughField(static_cast<std::int32_t>(state.range(0)), static_cast<std::int32_t>(state.range(1)));
  for (auto _ : state) {
    calculate(field);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * state.range(0) * state.range(1));
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->Args({64, 64})->Args({125, 100})->Args({400, 400})->Args({1000, 1000});
}

BENCHMARK(Plain<plain::Vorticity<double>>)->Name("Vorticity/plain")->Apply(Sizes);
BENCHMARK(Fast<CalcVorticity>)->Name("Vorticity/fast")->Apply(Sizes);
BENCHMARK(Plain<plain::SwirlingStrength<double>>)->Name("SwirlingStrength/plain")->Apply(Sizes);
BENCHMARK(Fast<CalcSwirlingStrength>)->Name("SwirlingStrength/fast")->Apply(Sizes);

}  // namespace
}  // namespace quiverion::bench
