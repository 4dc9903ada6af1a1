// The viewer: from a field to the list of what is drawn, from the list to pixels, from a key to the next field. The
// yardsticks: reading the field's memory once, and filling the same pixels.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QTest>
#include <memory>
#include <random>

#include "bench_support.h"
#include "generator/sample_files.h"
#include "picture/shown_field.h"
#include "support/field_builder.h"
#include "view/field_view.h"
#include "view/frmView.h"
#include "view/picture_painter.h"

namespace quiverion::bench {
namespace {

enum Shape { kRegular, kIrregular, kAllFilled };

// Rough, with 5 % invalid vectors; irregular: distances of 0.2 to 1.8 mm; all filled: each vector has a mark.
VectorField RoughField(int columns, int rows, Shape shape) {
  VectorField field = test::MakeField(columns, rows);
  std::mt19937_64 random(7);
  for (double& u : field.velX.Values()) u = test::Uniform(random, -3.0, 8.0);
  for (double& v : field.velY.Values()) v = test::Uniform(random, -3.0, 3.0);
  for (std::int32_t& status : field.status.Values()) {
    status = random() % 20 == 0 ? static_cast<std::int32_t>(random() % 2) - 1 : shape == kAllFilled ? 3 : 1;
  }
  double x = 0.0, y = 0.0;
  for (double& each : field.posX) each = x += shape == kIrregular ? test::Uniform(random, 0.2, 1.8) : 1.0;
  for (double& each : field.posY) each = y += shape == kIrregular ? test::Uniform(random, 0.2, 1.8) : 1.0;
  return field;
}

PictureChoices Choices(Quantity quantity, bool quick = false) {
  PictureChoices choices;
  choices.width = 1600.0;
  choices.height = 1000.0;
  choices.quantity = quantity;
  choices.quick = quick;
  if (quick) choices.spacing = 16.0;
  return choices;
}

// Everything anew, as for the next field of a series.
void ComposeField(benchmark::State& state) {
  const int size = static_cast<int>(state.range(0));
  VectorField field = RoughField(size, size * 4 / 5, static_cast<Shape>(state.range(1)));
  ShownField shown(field);
  for (auto _ : state) {
    shown.Changed();
    benchmark::DoNotOptimize(shown.Compose(Choices(Quantity::vorticity)));
  }
}
BENCHMARK(ComposeField)
    ->ArgsProduct({{125, 400, 1000}, {kRegular, kIrregular, kAllFilled}})
    ->Unit(benchmark::kMillisecond);

void ReadFieldOnce(benchmark::State& state) {
  const int size = static_cast<int>(state.range(0));
  VectorField field = RoughField(size, size * 4 / 5, kRegular);
  std::vector<double> copy(field.velX.Values().size());
  for (auto _ : state) {
    for (const Grid<double>* grid : {&field.velX, &field.velY}) std::ranges::copy(grid->Values(), copy.begin());
    benchmark::ClobberMemory();
  }
}
BENCHMARK(ReadFieldOnce)->Arg(125)->Arg(400)->Arg(1000)->Unit(benchmark::kMillisecond);

// A step of zooming: the field is known, in less detail if it is large.
void ZoomStep(benchmark::State& state) {
  const int size = static_cast<int>(state.range(0));
  VectorField field = RoughField(size, size, static_cast<Shape>(state.range(1)));
  ShownField shown(field);
  PictureChoices choices = Choices(Quantity::vorticity, size > 300);
  Extent view = shown.Summary().extent;
  benchmark::DoNotOptimize(shown.Compose(choices));
  for (auto _ : state) {
    view.left += 0.01;
    choices.view = view;
    benchmark::DoNotOptimize(ImageOf(shown.Compose(choices).picture));
  }
}
BENCHMARK(ZoomStep)->ArgsProduct({{125, 400, 4000}, {kRegular, kIrregular, kAllFilled}})->Unit(benchmark::kMillisecond);

void PaintField(benchmark::State& state) {
  const int size = static_cast<int>(state.range(0));
  VectorField field = RoughField(size, size * 4 / 5, static_cast<Shape>(state.range(1)));
  const Composition composition = ShownField(field).Compose(Choices(Quantity::vorticity));
  for (auto _ : state) benchmark::DoNotOptimize(ImageOf(composition.picture));
}
BENCHMARK(PaintField)
    ->ArgsProduct({{125, 400, 1000}, {kRegular, kIrregular, kAllFilled}})
    ->Unit(benchmark::kMillisecond);

void FillPixels(benchmark::State& state) {
  for (auto _ : state) {
    QImage image(1600, 1000, QImage::Format_RGB32);
    image.fill(Qt::white);
    benchmark::DoNotOptimize(image);
  }
}
BENCHMARK(FillPixels)->Unit(benchmark::kMillisecond);

// From the key to the painted window.
void NextField(benchmark::State& state) {
  const ScratchDirectory directory;
  for (int k = 0; k < 20; ++k) {
    const samples::SampleOptions options{.index = k, .outlierShare = 0.05};
    WritePlainly(directory.File("f" + std::to_string(k) + ".vas"),
                 samples::VasBytes(samples::MakeSampleField(options)));
  }
  const auto files = MakeSystemFileSystem();
  const SystemClock clock;
  frmView window({*files, clock, [] {}});
  window.resize(1600, 1000);
  window.show();
  window.OpenPaths({directory.File("f0.vas")});
  auto& view = *window.findChild<FieldView*>("FieldView");
  QApplication::processEvents();
  Qt::Key key = Qt::Key_Right;
  for (auto _ : state) {
    QTest::keyClick(&view, key);
    QApplication::processEvents();
    key = key == Qt::Key_Right ? Qt::Key_Left : Qt::Key_Right;
  }
}
BENCHMARK(NextField)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace quiverion::bench
