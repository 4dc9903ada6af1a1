#include "picture/axes.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace quiverion {
namespace {

constexpr double kFarthest = 1E300;
constexpr double kSmallestStep = 1E-290;  // mm; pixels per mm are finite

double MedianStep(const std::vector<double>& positions) {
  std::vector<double> steps;
  for (std::size_t k = 1; k < positions.size(); ++k) {
    if (positions[k] > positions[k - 1]) steps.push_back(positions[k] - positions[k - 1]);
  }
  if (steps.empty()) return 0.0;
  const auto middle = steps.begin() + static_cast<std::ptrdiff_t>(steps.size() / 2);
  std::ranges::nth_element(steps, middle);
  return *middle;
}

constexpr double kSlack = 1.0 - 1E-6;  // for rounding

// A power of two, with which shown places are `atLeast` mm apart, or of which there is only one.
std::int32_t StrideOf(const AxisPlaces& axis, double atLeast) {
  std::int32_t stride = 1;
  while (axis.step * stride < atLeast && stride < static_cast<std::int32_t>(axis.positions.size())) stride *= 2;
  return stride;
}

// Makes the shorter side of a long extent longer.
Extent NotTooNarrow(Extent extent) {
  constexpr double kLongest = 10.0;
  const double width = std::max(extent.Width(), extent.Height() / kLongest);
  const double height = std::max(extent.Height(), extent.Width() / kLongest);
  const double x = extent.left / 2.0 + extent.right / 2.0, y = extent.lower / 2.0 + extent.upper / 2.0;
  return {x - width / 2.0, x + width / 2.0, y - height / 2.0, y + height / 2.0};
}

}  // namespace

AxisPlaces PlacesOf(std::span<const double> positions) {
  AxisPlaces axis;
  for (std::size_t k = 0; k < positions.size(); ++k) {
    if (std::fabs(positions[k]) <= kFarthest) axis.indices.push_back(static_cast<std::int32_t>(k));
  }
  const auto positionOf = [&](std::int32_t index) { return positions[static_cast<std::size_t>(index)]; };
  std::ranges::stable_sort(axis.indices, {}, positionOf);
  std::ranges::transform(axis.indices, std::back_inserter(axis.positions), positionOf);
  axis.step = MedianStep(axis.positions);
  return axis;
}

void SetOuterEdges(AxisPlaces& axis, double otherStep) {
  if (axis.positions.empty()) return;
  const double first = axis.positions.front(), last = axis.positions.back();
  double step = axis.step > 0.0 ? axis.step : otherStep > 0.0 ? otherStep : 1.0;
  // Far from 0 a step may be less than the distance of two doubles.
  step = std::max({step, std::fabs(first) * 1E-12, std::fabs(last) * 1E-12, kSmallestStep});
  axis.edges = {first - step / 2.0};
  for (std::size_t k = 1; k < axis.positions.size(); ++k) {
    axis.edges.push_back(std::midpoint(axis.positions[k - 1], axis.positions[k]));
  }
  axis.edges.push_back(last + step / 2.0);
  axis.step = step;
}

PlotMap MapOf(const Extent& extent, const Rectangle& area, bool equalScales) {
  if (!equalScales) return {area, extent};
  const Extent shown = NotTooNarrow(extent);
  const double scale = std::min(area.width / shown.Width(), area.height / shown.Height());
  const double width = shown.Width() * scale, height = shown.Height() * scale;
  return {{area.left + (area.width - width) / 2.0, area.top + (area.height - height) / 2.0, width, height}, shown};
}

std::int32_t NearestPlace(const AxisPlaces& axis, double position) {
  if (axis.positions.empty()) return -1;
  const auto after = std::ranges::lower_bound(axis.positions, position);
  auto nearest = after;
  if (after == axis.positions.end() ||
      (after != axis.positions.begin() && position - *(after - 1) <= *after - position)) {
    --nearest;
  }
  return static_cast<std::int32_t>(nearest - axis.positions.begin());
}

double ThinnedStep(const AxisPlaces& axis, double pixelsPerMm, double pixels) {
  return axis.step * StrideOf(axis, pixels * kSlack / pixelsPerMm) * pixelsPerMm;
}

std::vector<std::int32_t> ThinnedPlaces(const AxisPlaces& axis, double pixelsPerMm, double pixels) {
  const auto count = static_cast<std::int32_t>(axis.positions.size());
  const double atLeast = pixels * kSlack / pixelsPerMm;  // mm
  const std::int32_t stride = StrideOf(axis, atLeast);
  std::vector<std::int32_t> places;
  for (std::int32_t k = std::min(stride / 2, (count - 1) / 2); k < count; k += stride) {
    const auto positionAt = [&](std::int32_t place) { return axis.positions[static_cast<std::size_t>(place)]; };
    if (places.empty() || positionAt(k) - positionAt(places.back()) >= atLeast) places.push_back(k);
  }
  return places;
}

}  // namespace quiverion
