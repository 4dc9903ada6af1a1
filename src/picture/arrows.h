#pragma once

#include "picture/picture.h"

/// The length and the shape of one arrow.
namespace quiverion {

enum class ArrowMode { proportional, equalLength, squareRoot };
enum class ArrowAnchor { middle, tail };

/// How velocities become arrows.
struct ArrowScale {
  ArrowMode mode = ArrowMode::proportional;
  ArrowAnchor anchor = ArrowAnchor::middle;
  double reference = 1.0;  ///< m/s, the speed whose arrow is 0.9 steps long
  double step = 10.0;      ///< pixels between two arrows that are shown
  double factor = 1.0;     ///< further factor of the length
};

/// Arrows are cut at this many steps.
inline constexpr double kLongestArrow = 3.0;

/// Pixels; not cut. 0 if the speed is 0 or not finite, or the reference is not above 0.
double ArrowLength(const ArrowScale& scale, double speed);

/// Appends the arrow of a velocity (m/s) at its point: a line and a head. A cut arrow has a second head. One that is
/// shorter than half a pixel is a dot; one that is not finite is nothing.
void AppendArrow(Shapes& shapes, const ArrowScale& scale, Point at, double u, double v);

}  // namespace quiverion
