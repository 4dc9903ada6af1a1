#include "picture/compose.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>

#include "picture/frame.h"
#include "picture/plot_items.h"
#include "picture/scales.h"

namespace quiverion {
namespace {

constexpr double kReferencePart = 0.95;
constexpr double kExtremePart = 0.99;

// Finite speeds of every `stride`-th valid vector.
void AppendSpeeds(const VectorField& field, double subtractU, double subtractV, std::size_t stride,
                  std::vector<double>& speeds) {
  const auto u = field.velX.Values(), v = field.velY.Values();
  const auto status = field.status.Values();
  for (std::size_t k = 0; k < status.size(); k += stride) {
    if (status[k] <= 0) continue;
    const double speed = SpeedOf(u[k] - subtractU, v[k] - subtractV);
    if (std::isfinite(speed)) speeds.push_back(speed);
  }
}

void AppendValues(const VectorField& field, const Grid<double>& grid, std::size_t stride, std::vector<double>& values) {
  const auto all = grid.Values();
  const auto status = field.status.Values();
  for (std::size_t k = 0; k < status.size(); k += stride) {
    if (status[k] > 0 && std::isfinite(all[k])) values.push_back(all[k]);
  }
}

double ReferenceOf(std::vector<double>& speeds) {
  const double reference = Quantile(speeds, kReferencePart);
  // Nearly all at rest: the others are the scale.
  return reference == 0.0 && !speeds.empty() ? std::ranges::max(speeds) : reference;
}

bool HasValues(Quantity quantity) {
  return quantity != Quantity::none && quantity != Quantity::status;
}

double MeanOf(const VectorField& field, const Grid<double>& velocity) {
  const auto values = velocity.Values();
  const auto status = field.status.Values();
  double sum = 0.0;
  std::int64_t count = 0;
  for (std::size_t k = 0; k < status.size(); ++k) {
    if (status[k] <= 0 || !std::isfinite(values[k])) continue;
    sum += values[k];
    ++count;
  }
  return count > 0 && std::isfinite(sum) ? sum / static_cast<double>(count) : 0.0;
}

Extent ExtentOf(const AxisPlaces& x, const AxisPlaces& y) {
  if (x.positions.empty() || y.positions.empty()) return {0.0, 1.0, 0.0, 1.0};
  return {x.edges.front(), x.edges.back(), y.edges.front(), y.edges.back()};
}

}  // namespace

FieldSummary Summarise(const VectorField& field, double subtractU, double subtractV) {
  FieldSummary summary;
  summary.x = PlacesOf(field.posX);
  summary.y = PlacesOf(field.posY);
  const double stepX = summary.x.step;
  SetOuterEdges(summary.x, summary.y.step);
  SetOuterEdges(summary.y, stepX);
  summary.extent = ExtentOf(summary.x, summary.y);
  summary.counts = CountStatuses(field.status);
  summary.meanU = MeanOf(field, field.velX);
  summary.meanV = MeanOf(field, field.velY);
  std::vector<double> speeds;
  speeds.reserve(field.status.Values().size());
  AppendSpeeds(field, subtractU, subtractV, 1, speeds);
  for (std::size_t k = 0; k < static_cast<std::size_t>(StatusKind::rejected); ++k) summary.valid += summary.counts[k];
  summary.notFinite = summary.valid - static_cast<std::int64_t>(speeds.size());
  summary.reference = ReferenceOf(speeds);
  return summary;
}

PictureChoices ChoicesOf(const VectorField& field, PictureChoices preset) {
  preset.header = field.showHeader;
  preset.arrows = field.showVectorField;
  preset.coordinateSystem = field.showCoordSystem != kFlagFalse;
  preset.equalScales = preset.equalScales || field.aspectRatio1to1 != kFlagFalse;
  preset.factor = std::isfinite(field.scaleFactor) ? field.scaleFactor : 1.0;
  preset.quantity = QuantityOf(field.background);
  const bool fileLimits = preset.quantity != Quantity::none && std::isfinite(field.paletteMin) &&
                          std::isfinite(field.paletteMax) && field.paletteMin < field.paletteMax;
  // Arrows of scalars would mislead.
  const auto result = StatisticResultOf(field);
  if (result >= StatisticResult::product && preset.quantity == Quantity::none) {
    preset.arrows = false;
    preset.quantity = Quantity::u;
  }
  preset.limits.reset();
  if (fileLimits) preset.limits = Limits{field.paletteMin, field.paletteMax};
  return preset;
}

ShownValues ShowValues(VectorField& field, Quantity quantity) {
  if (!HasValues(quantity)) return {};
  ShownValues shown{.grid = &ValuesOf(field, quantity)};
  std::vector<double> values;
  values.reserve(field.status.Values().size());
  AppendValues(field, *shown.grid, 1, values);
  if (!values.empty()) {
    const auto range = std::ranges::minmax(values);
    shown.smallest = range.min;
    shown.largest = range.max;
  }
  shown.automatic = RobustLimits(values, TextsOf(quantity).isSigned);
  return shown;
}

Composition Compose(const VectorField& field, const FieldSummary& summary, const ShownValues& values,
                    const PictureChoices& choices) {
  Composition composition;
  composition.limits = choices.limits.value_or(values.automatic);
  Frame frame(field, summary, values, choices, composition.limits);
  composition.map = frame.Map();
  composition.legend = frame.Legend();
  const std::size_t below = frame.ShapesBelowVectors();
  Picture& picture = composition.picture;
  picture = frame.Take();
  picture.cells = CellsOf(field, summary, values.grid, choices, composition.map, composition.limits);
  std::vector<Shapes> shapes =
      VectorShapes(field, summary, choices, composition.map, ScaleOf(summary, choices, composition.map));
  picture.shapes.insert(picture.shapes.begin() + static_cast<std::ptrdiff_t>(below),
                        std::make_move_iterator(shapes.begin()), std::make_move_iterator(shapes.end()));
  return composition;
}

Composition Compose(VectorField& field, const PictureChoices& choices) {
  const FieldSummary summary = Summarise(field, choices.subtractU, choices.subtractV);
  return Compose(field, summary, ShowValues(field, choices.quantity), choices);
}

void SeriesScale::Add(VectorField& field) {
  Add(field, HasValues(quantity_) ? &ValuesOf(field, quantity_) : nullptr);
}

void SeriesScale::Add(const VectorField& field, const Grid<double>* values) {
  std::size_t stride = field.status.Values().size() / perField_ + 1;
  while (std::gcd(stride, static_cast<std::size_t>(field.columnCount)) > 1) ++stride;  // not always the same columns
  AppendSpeeds(field, 0.0, 0.0, stride, speeds_);
  if (values == nullptr) return;
  std::vector<double> ofField;
  AppendValues(field, *values, stride, ofField);
  if (ofField.empty()) return;
  if (TextsOf(quantity_).isSigned) {
    for (double& value : ofField) value = std::fabs(value);
  }
  extremes_.push_back(Quantile(ofField, kExtremePart));
}

double SeriesScale::Reference() {
  return ReferenceOf(speeds_);
}

Limits SeriesScale::BarLimits() {
  constexpr std::size_t kFew = 5;  // of so few fields none is left out
  std::vector<double> extremes = extremes_;
  if (!extremes.empty() && extremes.size() < kFew) std::ranges::fill(extremes, std::ranges::max(extremes));
  return RobustLimits(extremes, TextsOf(quantity_).isSigned);
}

}  // namespace quiverion
