#pragma once

#include <optional>
#include <string>
#include <vector>

#include "picture/compose.h"

/// Single vectors: the one under the mouse, two of them compared, those along a line.
namespace quiverion {

/// A point of the grid, one-based.
struct GridPoint {
  std::int32_t i = 0;  ///< column
  std::int32_t j = 0;  ///< row
  bool operator==(const GridPoint&) const = default;
};

/// The vector nearest to a point of the picture; none outside the plot and more than half a step beside the grid.
std::optional<GridPoint> PointUnder(const FieldSummary& summary, const PlotMap& map, Point picture);

/// Everything about one vector.
struct VectorValues {
  double x = 0.0, y = 0.0;  ///< mm
  double u = 0.0, v = 0.0;  ///< m/s
  double speed = 0.0;       ///< m/s
  double angle = 0.0;       ///< degrees, -180 to 180, counter-clockwise from the x axis; not a number at rest
  double vorticity = 0.0;   ///< 1/s
  double swirl2 = 0.0;      ///< 1/s²
  std::int32_t status = 0;
};
VectorValues ValuesAt(const VectorField& field, GridPoint point);

/// One line: indices, position, velocity, what is derived from it, status in words.
std::string ReadoutText(const VectorField& field, GridPoint point);

/// One line: distance and direction from `from` to `to`, difference of their velocities.
std::string DifferenceText(const VectorField& field, GridPoint from, GridPoint to);

/// A vector on a line.
struct ProfileValue {
  double distance = 0.0;  ///< mm, along the line from its beginning
  GridPoint point;
  VectorValues values;
};

/// The vectors nearest to a line between two positions (mm), each once, in its order: what was measured, with nothing
/// in between.
std::vector<ProfileValue> ProfileAlong(const VectorField& field, const FieldSummary& summary, Point from, Point to);

/// A profile as text for other programs: a line with the names, then one for each vector, columns separated by tabs.
std::string ProfileText(const VectorField& field, const std::vector<ProfileValue>& profile);

/// The profile as a picture: u, v and the magnitude over the distance, invalid vectors left out.
Picture ProfilePicture(const VectorField& field, const std::vector<ProfileValue>& profile,
                       const PictureChoices& choices);

}  // namespace quiverion
