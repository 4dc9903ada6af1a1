#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "field/vector_field.h"
#include "picture/arrows.h"
#include "picture/axes.h"
#include "picture/palette.h"
#include "picture/picture.h"
#include "picture/quantities.h"
#include "picture/statuses.h"

/// From a field and what somebody wants to see of it to the list of what is drawn.
namespace quiverion {

/// What a picture needs to know of a field, computed once for all its pictures.
struct FieldSummary {
  AxisPlaces x, y;
  Extent extent;  ///< all points, with half a step around them
  StatusCounts counts{};
  std::int64_t notFinite = 0;       ///< valid vectors whose velocity is not finite; they are not drawn
  double reference = 0.0;           ///< m/s, the 95 % quantile of the speeds of valid vectors
  std::int64_t valid = 0;           ///< vectors
  double meanU = 0.0, meanV = 0.0;  ///< m/s, of valid vectors
};

/// The reference is that of the velocities minus (subtractU, subtractV).
FieldSummary Summarise(const VectorField& field, double subtractU = 0.0, double subtractV = 0.0);

struct PictureChoices {
  double width = 1200.0, height = 900.0;  ///< pixels
  double textSize = 13.0;                 ///< pixels
  bool darkPaper = false;

  bool header = false;  ///< the lines of the header above the plot
  bool arrows = true;
  bool coordinateSystem = false;  ///< lines at the ticks, and both axes through (0, 0)
  bool equalScales = true;
  std::optional<Extent> view{};  ///< the part that is shown; everything if none

  ArrowMode mode = ArrowMode::proportional;
  ArrowAnchor anchor = ArrowAnchor::middle;
  double factor = 1.0;                      ///< of the length of arrows
  std::optional<double> reference{};        ///< m/s; that of the field if none
  double subtractU = 0.0, subtractV = 0.0;  ///< m/s, from every vector that is drawn
  double spacing = 8.0;                     ///< pixels between neighbouring arrows
  bool quick = false;                       ///< while something moves: single vectors of a fine grid are not marked

  Quantity quantity = Quantity::none;
  std::optional<Limits> limits{};  ///< of the colour bar; automatic if none
  std::array<bool, kStatusKinds> hidden{};
  bool processed = false;  ///< commands have worked on the field since it was loaded
};

/// The view settings of a field; whatever they say nothing about is as in `preset`.
PictureChoices ChoicesOf(const VectorField& field, PictureChoices preset = {});

/// A name of the legend, for clicks.
struct LegendPlace {
  Rectangle place;
  StatusKind kind;
};

struct Composition {
  Picture picture;
  PlotMap map;
  Limits limits;  ///< of the colour bar
  std::vector<LegendPlace> legend;
};

/// The values of a quantity and what a colour bar needs to know of them.
struct ShownValues {
  const Grid<double>* grid = nullptr;  ///< none without a quantity that has values
  Limits automatic{};                  ///< RobustLimits of the values at valid vectors
  double smallest = 0.0, largest = 0.0;
};

/// Computed once for all pictures of a field; the grid is part of the field and lasts until it changes (ValuesOf).
ShownValues ShowValues(VectorField& field, Quantity quantity);

/// `summary` and `values` are those of the field.
Composition Compose(const VectorField& field, const FieldSummary& summary, const ShownValues& values,
                    const PictureChoices& choices);

/// The same for a single picture.
Composition Compose(VectorField& field, const PictureChoices& choices);

/// One scale for all fields of a series, from values of some or all of them, as many of each.
class SeriesScale {
 public:
  /// At most `perField` values, spread over the field.
  explicit SeriesScale(Quantity quantity, std::size_t perField = 5000) : quantity_(quantity), perField_(perField) {}

  void Add(VectorField& field);

  /// The same with values that are known already; `values` is null if the quantity has none.
  void Add(const VectorField& field, const Grid<double>* values);

  double Reference();  ///< m/s, 0 without fields
  Limits BarLimits();

 private:
  Quantity quantity_;
  std::size_t perField_;
  std::vector<double> speeds_;
  std::vector<double> extremes_;  // one of each field, so that a broken field among them does not count
};

}  // namespace quiverion
