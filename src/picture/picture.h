#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// A picture as a plain list of what is to be drawn, in the order in which it is painted. Coordinates are pixels of the
/// picture, x to the right, y downwards. Every coordinate is finite, and the number of items depends on the size of the
/// picture, not on that of the field.
namespace quiverion {

struct Colour {
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;
  bool operator==(const Colour&) const = default;
};

struct Point {
  double x = 0.0;
  double y = 0.0;
  bool operator==(const Point&) const = default;
};

struct Rectangle {
  double left = 0.0;
  double top = 0.0;
  double width = 0.0;
  double height = 0.0;

  double Right() const { return left + width; }
  double Bottom() const { return top + height; }
  bool Contains(Point point) const {
    return point.x >= left && point.x <= Right() && point.y >= top && point.y <= Bottom();
  }
  bool operator==(const Rectangle&) const = default;
};

struct Segment {
  Point from;
  Point to;
};

struct Triangle {
  Point a, b, c;
};

/// Areas, triangles and lines of one colour, painted in this order.
struct Shapes {
  Colour colour;
  double lineWidth = 1.0;
  bool inPlot = false;  ///< clipped to the plot
  std::vector<Rectangle> areas{};
  std::vector<Triangle> triangles{};
  std::vector<Segment> lines{};
};

/// Coloured cells that fill the plot, or a part of it: cell (column, row) lies between two neighbouring edges on both
/// axes. Edges ascend. A cell of colour kNoCell is left out.
struct Cells {
  static constexpr std::uint8_t kNoCell = 255;

  std::vector<double> xEdges;
  std::vector<double> yEdges;
  std::vector<std::uint8_t> indices;  ///< of colours; the columns of the first row first
  std::vector<Colour> colours;

  std::size_t Columns() const { return xEdges.empty() ? 0 : xEdges.size() - 1; }
  std::size_t Rows() const { return yEdges.empty() ? 0 : yEdges.size() - 1; }
};

enum class Align { start, middle, end };

/// One line of text. `at` is the middle of its height at its start, middle or end.
struct Label {
  Point at;
  std::string text;   ///< UTF-8
  double size = 0.0;  ///< of the font, in pixels
  Align align = Align::start;
  bool upwards = false;  ///< turned by 90 degrees, read from below
  bool bold = false;
  Colour colour;
};

/// Painted in this order: paper, cells (clipped to the plot), shapes, labels.
struct Picture {
  double width = 0.0;
  double height = 0.0;
  Colour paper;
  Rectangle plot;
  Cells cells;
  std::vector<Shapes> shapes;
  std::vector<Label> labels;
};

}  // namespace quiverion
