#include "picture/plot_items.h"

#include <algorithm>
#include <cmath>

namespace quiverion {
namespace {

// Colours of cells after those of the palette.
constexpr std::uint8_t kMissing = kPaletteSize;                                                // no value here
constexpr std::array kMarked = {StatusKind::rejected, StatusKind::third, StatusKind::masked};  // in cells after those
static_assert(kMissing + kMarked.size() < Cells::kNoCell);
constexpr double kFinest = 4.0;  // pixels between vectors with marks of their own

bool IsFine(const FieldSummary& summary, const PlotMap& map) {
  return std::min(summary.x.step * map.PixelsPerMmX(), summary.y.step * map.PixelsPerMmY()) < kFinest;
}

// Cells along one axis: the place that each shows, and in which cell a place is.
struct CellAxis {
  std::vector<double> edges;         // pixels, ascending
  std::vector<std::int32_t> places;  // one for each cell
  std::vector<std::int32_t> cellOf;  // one for each place, -1 outside the plot
};

// One cell for every visible place or, if these are more than pixels, one for every pixel. `edgeOf` gives the picture's
// coordinate for a position; it may ascend or descend.
template <class EdgeOf>
CellAxis CellAxisOf(const AxisPlaces& axis, double begin, double length, EdgeOf edgeOf) {
  CellAxis cells;
  const auto count = static_cast<std::int32_t>(axis.positions.size());
  cells.cellOf.assign(axis.positions.size(), -1);
  std::vector<std::int32_t> visible;
  for (std::int32_t k = 0; k < count; ++k) {
    const double a = edgeOf(axis.edges[static_cast<std::size_t>(k)]);
    const double b = edgeOf(axis.edges[static_cast<std::size_t>(k) + 1]);
    if (std::max(a, b) > begin && std::min(a, b) < begin + length) visible.push_back(k);
  }
  if (visible.empty()) return cells;
  const bool descends = edgeOf(axis.edges.back()) < edgeOf(axis.edges.front());
  if (descends) std::ranges::reverse(visible);
  const auto lowEdge = [&](std::int32_t k) {
    return edgeOf(axis.edges[static_cast<std::size_t>(descends ? k + 1 : k)]);
  };
  const auto highEdge = [&](std::int32_t k) {
    return edgeOf(axis.edges[static_cast<std::size_t>(descends ? k : k + 1)]);
  };
  const double end = begin + length;
  if (static_cast<double>(visible.size()) <= length) {
    cells.places = visible;
    for (const std::int32_t k : visible) cells.edges.push_back(std::clamp(lowEdge(k), begin, end));
    cells.edges.push_back(std::clamp(highEdge(visible.back()), begin, end));
    for (std::size_t n = 0; n < visible.size(); ++n) {
      cells.cellOf[static_cast<std::size_t>(visible[n])] = static_cast<std::int32_t>(n);
    }
    return cells;
  }
  const double first = std::max(lowEdge(visible.front()), begin), last = std::min(highEdge(visible.back()), end);
  std::size_t n = 0;
  const auto pixels = static_cast<std::int32_t>(std::ceil(last - first));
  for (std::int32_t k = 0; k < pixels; ++k) {
    const double edge = first + k;
    while (n + 1 < visible.size() && highEdge(visible[n]) <= edge + 0.5) ++n;
    cells.edges.push_back(edge);
    cells.places.push_back(visible[n]);
  }
  cells.edges.push_back(last);
  for (const std::int32_t k : visible) {
    const double middle = std::clamp((lowEdge(k) + highEdge(k)) / 2.0, first, last) - first;
    const auto cell = std::min(static_cast<std::int32_t>(middle), static_cast<std::int32_t>(cells.places.size()) - 1);
    cells.cellOf[static_cast<std::size_t>(k)] = cell;
  }
  return cells;
}

std::int32_t OneBased(const AxisPlaces& axis, std::int32_t place) {
  return axis.indices[static_cast<std::size_t>(place)] + 1;
}

// Paler than the arrows of the kind.
Colour Tint(StatusKind kind, bool dark) {
  if (kind == StatusKind::valid) return dark ? Colour{60, 60, 60} : Colour{235, 235, 235};
  const Colour colour = ColourOf(kind, dark);
  const auto mix = [dark](std::uint8_t part) {
    return static_cast<std::uint8_t>(dark ? part / 2 + 10 : part / 2 + 127);
  };
  return {mix(colour.red), mix(colour.green), mix(colour.blue)};
}

std::vector<Colour> CellColours(const PictureChoices& choices, const Limits& limits) {
  const bool dark = choices.darkPaper;
  const Palette& palette = PaletteOf(KindFor(limits), dark);
  std::vector<Colour> colours(palette.begin(), palette.end());
  if (choices.quantity == Quantity::status) {
    for (std::size_t k = 0; k < kStatusKinds; ++k) colours[k] = Tint(static_cast<StatusKind>(k), dark);
  }
  colours.push_back(dark ? Colour{90, 90, 90} : Colour{190, 190, 190});
  for (const StatusKind kind : kMarked) colours.push_back(ColourOf(kind, dark));
  return colours;
}

// The cells of a grid. Each shows the vector at its place; the last step marks what would vanish between places.
class CellPainter {
 public:
  CellPainter(const VectorField& field, const FieldSummary& summary, const PlotMap& map)
      : field_(field),
        summary_(summary),
        columns_(CellAxisOf(summary.x, map.plot.left, map.plot.width, [&](double x) { return map.ToPictureX(x); })),
        rows_(CellAxisOf(summary.y, map.plot.top, map.plot.height, [&](double y) { return map.ToPictureY(y); })),
        indices_(columns_.places.size() * rows_.places.size(), Cells::kNoCell) {}

  // `indexOf` gives the colour of the vector (i, j).
  template <class IndexOf>
  void Fill(IndexOf indexOf) {
    std::vector<std::int32_t> is;
    for (const std::int32_t place : columns_.places) is.push_back(OneBased(summary_.x, place));
    std::uint8_t* cell = indices_.data();
    for (const std::int32_t place : rows_.places) {
      const std::int32_t j = OneBased(summary_.y, place);
      for (const std::int32_t i : is) *cell++ = indexOf(i, j);
    }
  }

  void Mark(const std::array<bool, kStatusKinds>& hidden) {
    for (std::size_t row = 0; row < rows_.cellOf.size(); ++row) {
      if (rows_.cellOf[row] < 0) continue;
      const std::int32_t* const status = field_.status.Row(summary_.y.indices[row] + 1);
      std::uint8_t* const cells =
          indices_.data() + static_cast<std::size_t>(rows_.cellOf[row]) * columns_.places.size();
      for (std::size_t column = 0; column < columns_.cellOf.size(); ++column) {
        const std::int32_t value = status[summary_.x.indices[column]];
        if (value == 1 || value == 2 || columns_.cellOf[column] < 0) continue;
        const StatusKind kind = KindOf(value);
        const auto marked = std::ranges::find(kMarked, kind);
        if (marked == kMarked.end() || hidden[static_cast<std::size_t>(kind)]) continue;
        const auto index = static_cast<std::uint8_t>(kMissing + 1 + (marked - kMarked.begin()));
        std::uint8_t& cell = cells[columns_.cellOf[column]];
        if (cell <= kMissing || cell > index) cell = index;  // the first kind of the list is seen
      }
    }
  }

  Cells Take(std::vector<Colour> colours) {
    return {std::move(columns_.edges), std::move(rows_.edges), std::move(indices_), std::move(colours)};
  }

 private:
  const VectorField& field_;
  const FieldSummary& summary_;
  CellAxis columns_, rows_;
  std::vector<std::uint8_t> indices_;
};

// Which marks there are already, so that their number depends on the size of the plot.
class Raster {
 public:
  Raster(const Rectangle& plot, double size)
      : plot_(plot), size_(size), columns_(static_cast<std::size_t>(plot.width / size) + 1) {
    taken_.resize(columns_ * (static_cast<std::size_t>(plot.height / size) + 1));
  }
  // True if the point lies in the plot, and in a place without a mark. It has one then.
  bool Take(Point at) {
    if (!plot_.Contains(at)) return false;
    const auto column = static_cast<std::size_t>((at.x - plot_.left) / size_);
    const auto row = static_cast<std::size_t>((at.y - plot_.top) / size_);
    const std::size_t place = row * columns_ + column;
    if (taken_[place]) return false;
    taken_[place] = true;
    return true;
  }

 private:
  Rectangle plot_;
  double size_;
  std::size_t columns_;
  std::vector<bool> taken_;
};

// The vectors of a grid as shapes, one list for each kind.
class VectorPainter {
 public:
  VectorPainter(const VectorField& field, const FieldSummary& summary, const PictureChoices& choices,
                const PlotMap& map, const ArrowScale& scale)
      : field_(field),
        summary_(summary),
        choices_(choices),
        map_(map),
        scale_(scale),
        common_(CommonKind(summary.counts)) {
    for (std::size_t k = 0; k < kStatusKinds; ++k) {
      const auto kind = static_cast<StatusKind>(k);
      shapes_[k].colour = ColourOf(kind == common_ ? StatusKind::valid : kind, choices.darkPaper);
      shapes_[k].lineWidth = 1.0;
      shapes_[k].inPlot = true;
    }
  }

  std::vector<Shapes> Paint() {
    if (choices_.arrows) PaintArrows();
    if (!IsFine(summary_, map_)) PaintMarks();
    return {shapes_.begin(), shapes_.end()};
  }

 private:
  bool IsHidden(StatusKind kind) const { return choices_.hidden[static_cast<std::size_t>(kind)]; }
  Shapes& ShapesOf(StatusKind kind) { return shapes_[static_cast<std::size_t>(kind)]; }
  double PictureX(std::int32_t place) const {
    return map_.ToPictureX(summary_.x.positions[static_cast<std::size_t>(place)]);
  }
  double PictureY(std::int32_t place) const {
    return map_.ToPictureY(summary_.y.positions[static_cast<std::size_t>(place)]);
  }

  // Arrows reach into the plot from points around it.
  static std::vector<std::int32_t> Near(std::vector<std::int32_t> places, double begin, double end, auto coordinateOf) {
    std::erase_if(places, [&](std::int32_t place) {
      const double at = coordinateOf(place);
      return !(at >= begin && at <= end);
    });
    return places;
  }

  void PaintArrows() {
    const double reach = kLongestArrow * scale_.step;
    const Rectangle& plot = map_.plot;
    const auto columns = Near(ThinnedPlaces(summary_.x, map_.PixelsPerMmX(), choices_.spacing), plot.left - reach,
                              plot.Right() + reach, [this](std::int32_t place) { return PictureX(place); });
    const auto rows = Near(ThinnedPlaces(summary_.y, map_.PixelsPerMmY(), choices_.spacing), plot.top - reach,
                           plot.Bottom() + reach, [this](std::int32_t place) { return PictureY(place); });
    for (const std::int32_t row : rows) {
      const std::int32_t j = OneBased(summary_.y, row);
      for (const std::int32_t column : columns) {
        const std::int32_t i = OneBased(summary_.x, column);
        const StatusKind kind = KindOf(field_.status(i, j));
        if (kind == StatusKind::masked || IsHidden(kind)) continue;
        const Point at{PictureX(column), PictureY(row)};
        if (IsMarkedWithArrow(kind) && plot.Contains(at)) AppendMark(ShapesOf(kind), kind, at, scale_.step);
        const bool exists = kind != StatusKind::rejected || field_.velX(i, j) != 0.0 || field_.velY(i, j) != 0.0;
        if (!exists) continue;
        AppendArrow(ShapesOf(kind), scale_, at, field_.velX(i, j) - choices_.subtractU,
                    field_.velY(i, j) - choices_.subtractV);
      }
    }
  }

  bool IsMarkedWithArrow(StatusKind kind) const {
    return (kind == StatusKind::second || kind == StatusKind::fourth) && kind != common_;
  }

  // Of every vector, but for the kinds that have none or are drawn with their arrows.
  void PaintMarks() {
    std::vector<Raster> rasters(kStatusKinds, Raster(map_.plot, kFinest / 2.0));
    for (std::size_t row = 0; row < summary_.y.positions.size(); ++row) {
      const std::int32_t j = summary_.y.indices[row] + 1;
      const double y = PictureY(static_cast<std::int32_t>(row));
      if (!(y >= map_.plot.top && y <= map_.plot.Bottom())) continue;
      for (std::size_t column = 0; column < summary_.x.positions.size(); ++column) {
        const StatusKind kind = KindOf(field_.status(summary_.x.indices[column] + 1, j));
        if (kind < StatusKind::third || kind == StatusKind::fourth || kind == common_ || IsHidden(kind)) continue;
        const Point at{PictureX(static_cast<std::int32_t>(column)), y};
        if (rasters[static_cast<std::size_t>(kind)].Take(at)) AppendMark(ShapesOf(kind), kind, at, scale_.step);
      }
    }
  }

  const VectorField& field_;
  const FieldSummary& summary_;
  const PictureChoices& choices_;
  const PlotMap& map_;
  const ArrowScale& scale_;
  const StatusKind common_;
  std::array<Shapes, kStatusKinds> shapes_;
};

}  // namespace

Cells CellsOf(const VectorField& field, const FieldSummary& summary, const Grid<double>* values,
              const PictureChoices& choices, const PlotMap& map, const Limits& limits) {
  const bool marks = IsFine(summary, map) && !choices.quick;
  if (choices.quantity == Quantity::none && !marks) return {};
  CellPainter painter(field, summary, map);
  if (choices.quantity == Quantity::status) {
    painter.Fill([&](std::int32_t i, std::int32_t j) { return static_cast<std::uint8_t>(KindOf(field.status(i, j))); });
  } else if (values != nullptr) {
    const PaletteScale scale(limits);
    painter.Fill([&](std::int32_t i, std::int32_t j) {
      const double value = (*values)(i, j);
      const bool shown = field.status(i, j) > 0 && std::isfinite(value);
      return shown ? static_cast<std::uint8_t>(scale.IndexOf(value)) : kMissing;
    });
  }
  if (marks) {
    std::array<bool, kStatusKinds> unmarked = choices.hidden;
    unmarked[static_cast<std::size_t>(CommonKind(summary.counts))] = true;
    painter.Mark(unmarked);
  }
  return painter.Take(CellColours(choices, limits));
}

ArrowScale ScaleOf(const FieldSummary& summary, const PictureChoices& choices, const PlotMap& map) {
  const double stepX = ThinnedStep(summary.x, map.PixelsPerMmX(), choices.spacing);
  const double stepY = ThinnedStep(summary.y, map.PixelsPerMmY(), choices.spacing);
  return {.mode = choices.mode,
          .anchor = choices.anchor,
          .reference = choices.reference.value_or(summary.reference),
          .step = std::min({stepX, stepY, std::max(map.plot.width, map.plot.height) / 4.0}),  // of a few vectors
          .factor = choices.factor};
}

StatusKind CommonKind(const StatusCounts& counts) {
  const auto end = counts.begin() + static_cast<std::ptrdiff_t>(StatusKind::rejected);
  return static_cast<StatusKind>(std::max_element(counts.begin(), end) - counts.begin());
}

void AppendMark(Shapes& shapes, StatusKind kind, Point at, double size) {
  const double half = std::clamp(0.22 * size, 1.0, 5.0);
  const Point left{at.x - half, at.y}, right{at.x + half, at.y}, above{at.x, at.y - half}, below{at.x, at.y + half};
  switch (kind) {
    case StatusKind::valid:
      return;
    case StatusKind::second:
      shapes.areas.push_back({at.x - half / 2.0, at.y - half / 2.0, half, half});
      return;
    case StatusKind::third:
      shapes.lines.insert(shapes.lines.end(), {{left, above}, {above, right}, {right, below}, {below, left}});
      return;
    case StatusKind::fourth:
      shapes.triangles.push_back({above, {right.x, below.y}, {left.x, below.y}});
      return;
    case StatusKind::rejected:
      shapes.lines.push_back({{left.x, above.y}, {right.x, below.y}});
      shapes.lines.push_back({{left.x, below.y}, {right.x, above.y}});
      return;
    case StatusKind::masked:
      shapes.areas.push_back({left.x, above.y, 2.0 * half, 2.0 * half});
  }
}

std::vector<Shapes> VectorShapes(const VectorField& field, const FieldSummary& summary, const PictureChoices& choices,
                                 const PlotMap& map, const ArrowScale& scale) {
  return VectorPainter(field, summary, choices, map, scale).Paint();
}

}  // namespace quiverion
