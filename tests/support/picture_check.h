#pragma once

#include <cmath>
#include <string>

#include "picture/picture.h"

namespace quiverion::test {

/// Walks over everything in a picture. Returns what breaks its promises: a coordinate that is not finite, more items
/// than its size allows, cells that do not fit their edges; empty if nothing does.
inline std::string WrongInPicture(const Picture& picture) {
  std::size_t items = 0;
  bool finite = std::isfinite(picture.plot.left) && std::isfinite(picture.plot.width);
  const auto point = [&](Point at) {
    finite = finite && std::isfinite(at.x) && std::isfinite(at.y);
    ++items;
  };
  for (const Shapes& shapes : picture.shapes) {
    for (const Rectangle& area : shapes.areas) point({area.left + area.width, area.top + area.height});
    for (const Triangle& each : shapes.triangles) point(each.a), point(each.b), point(each.c);
    for (const Segment& line : shapes.lines) point(line.from), point(line.to);
  }
  for (const Label& label : picture.labels) {
    point(label.at);
    items += label.text.size();
  }
  const Cells& cells = picture.cells;
  for (const auto* edges : {&cells.xEdges, &cells.yEdges}) {
    for (std::size_t k = 0; k < edges->size(); ++k) {
      point({(*edges)[k], 0.0});
      if (k > 0 && (*edges)[k] < (*edges)[k - 1]) return "edges do not ascend";
    }
  }
  if (!finite) return "a coordinate is not finite";
  if (cells.indices.size() != cells.Columns() * cells.Rows()) return "cells without edges";
  for (const std::uint8_t index : cells.indices) {
    if (index != Cells::kNoCell && index >= cells.colours.size()) return "a cell without a colour";
  }
  const double pixels = picture.width * picture.height;
  if (static_cast<double>(cells.indices.size()) > pixels + picture.width + picture.height + 4.0)
    return "too many cells";
  return static_cast<double>(items) > 20000.0 + 6.0 * pixels ? "too many items" : "";
}

}  // namespace quiverion::test
