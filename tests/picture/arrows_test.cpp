#include "picture/arrows.h"

#include <gtest/gtest.h>

#include <cmath>

#include "picture/axes.h"

namespace quiverion::test {
namespace {

TEST(Arrows, LengthsByMode) {
  struct Case {
    ArrowMode mode;
    double factor, speed, expected;
  };
  const Case cases[] = {{ArrowMode::proportional, 1, 4, 18},       {ArrowMode::proportional, 1, 2, 9},
                        {ArrowMode::proportional, 2, 4, 36},       {ArrowMode::proportional, -1, 4, -18},
                        {ArrowMode::proportional, 1, 40, 180},     {ArrowMode::squareRoot, 1, 1, 9},
                        {ArrowMode::equalLength, 1, 0.001, 18},    {ArrowMode::equalLength, 1, 0, 0},
                        {ArrowMode::proportional, 1, INFINITY, 0}, {ArrowMode::proportional, 1, NAN, 0}};
  for (const Case& each : cases) {
    const ArrowScale scale{.mode = each.mode, .reference = 4.0, .step = 20.0, .factor = each.factor};
    EXPECT_DOUBLE_EQ(ArrowLength(scale, each.speed), each.expected) << each.speed;
  }
  EXPECT_EQ(ArrowLength({.reference = 0.0}, 1.0), 0.0);
}

// The shaft from tail to head, as it is drawn.
Segment ShaftOf(double u, double v, ArrowScale scale) {
  Shapes shapes;
  AppendArrow(shapes, scale, {100.0, 100.0}, u, v);
  return shapes.lines.empty() ? Segment{} : shapes.lines.front();
}

TEST(Arrows, PointWhereTheVelocityGoes) {
  const ArrowScale tail{.anchor = ArrowAnchor::tail, .reference = 1.0, .step = 50.0};
  const ArrowScale middle{.anchor = ArrowAnchor::middle, .reference = 1.0, .step = 50.0};
  const std::pair<Point, Point> directions[] = {{{1, 0}, {1, 0}}, {{0, 1}, {0, -1}}, {{-3, -4}, {-0.6, 0.8}}};
  for (const auto& [velocity, expected] : directions) {
    const Segment shaft = ShaftOf(velocity.x, velocity.y, tail);
    const double length = std::hypot(shaft.to.x - shaft.from.x, shaft.to.y - shaft.from.y);
    EXPECT_NEAR((shaft.to.x - shaft.from.x) / length, expected.x, 1e-12);
    EXPECT_NEAR((shaft.to.y - shaft.from.y) / length, expected.y, 1e-12) << "upwards is a smaller y";
    EXPECT_EQ(shaft.from, (Point{100.0, 100.0}));
  }
  EXPECT_NEAR(ShaftOf(1, 0, middle).from.x, 100.0 - 0.45 * 50.0, 1e-9);
  ArrowScale backwards = tail;
  backwards.factor = -1.0;
  EXPECT_LT(ShaftOf(1, 0, backwards).to.x, 100.0);
}

TEST(Arrows, LongOnesAreCutAndMarked) {
  const ArrowScale scale{.anchor = ArrowAnchor::tail, .reference = 1.0, .step = 20.0};
  for (const auto& [speed, heads] : {std::pair(3.0, 1u), {3.4, 2u}, {1e30, 2u}}) {
    Shapes shapes;
    AppendArrow(shapes, scale, {0.0, 0.0}, speed, 0.0);
    EXPECT_EQ(shapes.triangles.size(), heads) << speed;
    EXPECT_LE(shapes.triangles.front().a.x, 60.0 + 1e-9) << speed;
  }
  for (const double speed : {0.0, 0.001}) {
    Shapes dot;
    AppendArrow(dot, scale, {0.0, 0.0}, speed, 0.0);
    EXPECT_TRUE(dot.lines.empty() && dot.areas.size() == 1) << "a valid vector at rest is seen";
  }
  Shapes nothing;
  AppendArrow(nothing, scale, {0.0, 0.0}, NAN, 0.0);
  EXPECT_TRUE(nothing.lines.empty() && nothing.areas.empty());
}

TEST(Axes, PlacesFollowThePositions) {
  struct Case {
    std::vector<double> positions;
    std::vector<std::int32_t> indices;
    double step;
  };
  const Case cases[] = {{{1, 2, 3}, {0, 1, 2}, 1},
                        {{9, 6, 3, 0}, {3, 2, 1, 0}, 3},
                        {{5, 1, 3}, {1, 2, 0}, 2},
                        {{2, 2, 2}, {0, 1, 2}, 0},
                        {{0, 1, 2, 3, 100}, {0, 1, 2, 3, 4}, 1},
                        {{NAN, 4, INFINITY, 1, -1e305}, {3, 1}, 3},
                        {{7}, {0}, 0},
                        {{NAN}, {}, 0}};
  for (const Case& each : cases) {
    const AxisPlaces axis = PlacesOf(each.positions);
    EXPECT_EQ(axis.indices, each.indices);
    EXPECT_EQ(axis.step, each.step);
  }
  AxisPlaces axis = PlacesOf(std::vector<double>{6, 0, 2});
  SetOuterEdges(axis, 1.0);
  EXPECT_EQ(axis.edges, (std::vector<double>{-2, 1, 4, 8}));
  const std::pair<double, int> nearest[] = {{-99, 0}, {0.9, 0}, {1.1, 1}, {4, 1}, {4.1, 2}, {99, 2}};
  for (const auto& [position, place] : nearest) EXPECT_EQ(NearestPlace(axis, position), place) << position;
  EXPECT_EQ(NearestPlace(PlacesOf({}), 0.0), -1);
}

TEST(Axes, AMillimetreIsAsLongInBothDirections) {
  const Rectangle area{10, 20, 600, 300};
  for (const Extent& extent : {Extent{0, 10, 0, 10}, {-5, 95, 3, 8}, {0, 1, 0, 1000}, {7, 7.001, 0, 5}}) {
    const PlotMap map = MapOf(extent, area, true);
    EXPECT_NEAR(map.PixelsPerMmX() / map.PixelsPerMmY(), 1.0, 1e-9);
    EXPECT_LE(std::max(map.plot.width / map.plot.height, map.plot.height / map.plot.width), 10.0 + 1e-9);
    EXPECT_TRUE(map.plot.left >= 10 - 1e-9 && map.plot.Right() <= 610 + 1e-9 && map.plot.Bottom() <= 320 + 1e-9);
    const Point back = map.ToField({map.ToPictureX(extent.right), map.ToPictureY(extent.lower)});
    EXPECT_NEAR(back.x, extent.right, 1e-9);
    EXPECT_NEAR(back.y, extent.lower, 1e-9);
    EXPECT_LT(map.ToPictureY(extent.upper), map.ToPictureY(extent.lower)) << "y is upwards";
  }
  EXPECT_EQ(MapOf({0, 10, 0, 10}, area, false).plot, area);
}

TEST(Axes, ThinnedPlacesStayApart) {
  for (const int count : {1, 2, 3, 7, 100, 1000}) {
    for (const double perMm : {0.001, 0.3, 1.0, 7.99, 8.0, 50.0}) {
      for (const bool irregular : {false, true}) {
        std::vector<double> positions;
        for (int k = 0; k < count; ++k) positions.push_back(k + (irregular ? 0.45 * (k % 3 - 1) : 0.0));
        const AxisPlaces axis = PlacesOf(positions);
        const auto places = ThinnedPlaces(axis, perMm, 8.0);
        ASSERT_FALSE(places.empty()) << "never nothing";
        for (std::size_t k = 1; k < places.size(); ++k) {
          const auto at = [&](std::size_t n) { return axis.positions[static_cast<std::size_t>(places[n])]; };
          EXPECT_GE((at(k) - at(k - 1)) * perMm, 8.0 * (1.0 - 1e-5)) << count << " " << perMm;
        }
        EXPECT_TRUE(irregular || perMm != 8.0 || places.size() == positions.size()) << "as many as fit";
      }
    }
  }
}

}  // namespace
}  // namespace quiverion::test
