#include "picture/arrows.h"

#include <algorithm>
#include <cmath>

#include "picture/quantities.h"

namespace quiverion {
namespace {

constexpr double kStepsAtReference = 0.9;
constexpr double kShortest = 0.5;        // pixels
constexpr double kSmallestFilled = 5.0;  // pixels of a head

// A head whose point is `reach` pixels from the tail: filled, or two lines if it is too small to see a difference.
void AppendHead(Shapes& shapes, Point tail, Point direction, double reach, double size) {
  const Point tip{tail.x + reach * direction.x, tail.y + reach * direction.y};
  const Point base{tip.x - size * direction.x, tip.y - size * direction.y};
  const Point side{-direction.y * size * 0.4, direction.x * size * 0.4};
  const Point left{base.x + side.x, base.y + side.y}, right{base.x - side.x, base.y - side.y};
  if (size >= kSmallestFilled) {
    shapes.triangles.push_back({tip, left, right});
  } else {
    shapes.lines.push_back({left, tip});
    shapes.lines.push_back({tip, right});
  }
}

}  // namespace

double ArrowLength(const ArrowScale& scale, double speed) {
  if (!std::isfinite(speed) || speed == 0.0 || !(scale.reference > 0.0)) return 0.0;
  const double full = kStepsAtReference * scale.step * scale.factor;
  const double part = scale.mode == ArrowMode::equalLength  ? 1.0
                      : scale.mode == ArrowMode::squareRoot ? std::sqrt(speed / scale.reference)
                                                            : speed / scale.reference;
  const double length = full * part;
  return std::isnan(length) ? 0.0 : length;  // infinitely many times nothing
}

void AppendArrow(Shapes& shapes, const ArrowScale& scale, Point at, double u, double v) {
  const double speed = SpeedOf(u, v);
  if (!std::isfinite(speed)) return;
  const double wanted = std::fabs(ArrowLength(scale, speed));
  const double length = std::min(wanted, kLongestArrow * scale.step);
  if (length < kShortest) {
    shapes.areas.push_back({at.x - 0.5, at.y - 0.5, 1.0, 1.0});
    return;
  }
  const double sense = scale.factor < 0.0 ? -1.0 : 1.0;
  const Point direction{sense * u / speed, -sense * v / speed};
  const double before = scale.anchor == ArrowAnchor::middle ? length / 2.0 : 0.0;
  const Point tail{at.x - before * direction.x, at.y - before * direction.y};
  // The head has the same angle and, between limits, the same share of every arrow.
  const double head = std::min(length, std::clamp(0.35 * length, 3.0, 9.0));
  const double shaft = head >= kSmallestFilled ? length - 0.8 * head : length;
  shapes.lines.push_back({tail, {tail.x + shaft * direction.x, tail.y + shaft * direction.y}});
  AppendHead(shapes, tail, direction, length, head);
  if (wanted > length) AppendHead(shapes, tail, direction, length - 0.9 * head, head);
}

}  // namespace quiverion
