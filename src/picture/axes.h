#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "picture/picture.h"

/// Where the columns and rows of a grid lie in a picture.
namespace quiverion {

/// Columns or rows in the order of their positions, whatever their order in the file. Positions that are not finite, or
/// beyond 1E300, have no place.
struct AxisPlaces {
  std::vector<std::int32_t> indices;  ///< zero-based, of the column or row at each place
  std::vector<double> positions;      ///< mm, ascending
  std::vector<double> edges;          ///< mm, halfway between neighbours; one more than positions
  double step = 0.0;                  ///< mm, the median distance of neighbours; 0 if there are no two
};
AxisPlaces PlacesOf(std::span<const double> positions);

/// Sets the outer edges half a step beyond the first and the last place. `otherStep` is the step of an axis with a
/// single place; a grid of one point is 1 mm wide.
void SetOuterEdges(AxisPlaces& axis, double otherStep);

/// A part of the plane, in mm.
struct Extent {
  double left = 0.0, right = 0.0, lower = 0.0, upper = 0.0;
  double Width() const { return right - left; }
  double Height() const { return upper - lower; }
  bool operator==(const Extent&) const = default;
};

/// The picture of a part of the plane: x to the right, y upwards.
struct PlotMap {
  Rectangle plot;
  Extent extent;

  double PixelsPerMmX() const { return plot.width / extent.Width(); }
  double PixelsPerMmY() const { return plot.height / extent.Height(); }
  double ToPictureX(double x) const { return plot.left + (x - extent.left) * PixelsPerMmX(); }
  double ToPictureY(double y) const { return plot.top + (extent.upper - y) * PixelsPerMmY(); }
  /// In mm.
  Point ToField(Point picture) const {
    return {extent.left + (picture.x - plot.left) / PixelsPerMmX(),
            extent.upper - (picture.y - plot.top) / PixelsPerMmY()};
  }
};

/// The largest plot within `area` that shows `extent`. With equal scales a mm is as long in x as in y, and an extent
/// that is more than 10 times as long as it is wide gets more on its narrow side.
PlotMap MapOf(const Extent& extent, const Rectangle& area, bool equalScales);

/// The place whose position is nearest to `position`, -1 if the axis has none.
std::int32_t NearestPlace(const AxisPlaces& axis, double position);

/// Pixels between two places that are shown, if all have the median distance.
double ThinnedStep(const AxisPlaces& axis, double pixelsPerMm, double pixels);

/// Which places are shown, so that neighbours are at least `pixels` apart: every one, every second, fourth and so on,
/// counted from the middle of the first stride; of places that are closer than their median fewer.
std::vector<std::int32_t> ThinnedPlaces(const AxisPlaces& axis, double pixelsPerMm, double pixels);

}  // namespace quiverion
