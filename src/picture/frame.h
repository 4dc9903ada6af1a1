#pragma once

#include <string>
#include <vector>

#include "picture/compose.h"
#include "picture/scales.h"

namespace quiverion {

/// What is around the plot: caption, axes, colour bar, legend and reference arrow; and with these the place that is
/// left for the plot. A picture that is too small for them has only the plot.
class Frame {
 public:
  Frame(const VectorField& field, const FieldSummary& summary, const ShownValues& values, const PictureChoices& choices,
        const Limits& limits);

  const PlotMap& Map() const { return map_; }
  const std::vector<LegendPlace>& Legend() const { return legend_; }
  /// How many of the shapes belong below arrows and marks.
  std::size_t ShapesBelowVectors() const { return below_; }
  /// Size, paper, plot, shapes and labels. Only once.
  Picture Take() { return std::move(picture_); }

 private:
  struct Margins {
    double left = 0.0, top = 0.0, right = 0.0, bottom = 0.0;
  };

  bool HasBar() const;
  double TextWidth(std::size_t characters) const;
  double LabelsWidth(const std::vector<double>& values, double step) const;
  std::string LegendText(StatusKind kind) const;
  Margins MarginsFor(double leftLabels, double rightLabels) const;
  PlotMap MapWithin(const Margins& margins) const;
  void ChooseMap();
  std::vector<std::string> CaptionLines() const;
  void AddCaption();
  void AddAxes();
  void AddGridLines();
  void AddBar();
  void AddBarEnds(const Rectangle& bar);
  void AddLegend();
  void AddReferenceArrow();
  Label& AddLabel(Point at, std::string text, Align align = Align::start);
  Shapes& AddShapes(Colour colour, double lineWidth);

  const VectorField& field_;
  const FieldSummary& summary_;
  const ShownValues& values_;
  const PictureChoices& choices_;
  const Limits& limits_;
  const double text_;  // size
  Colour ink_, faint_;
  PlotMap map_;
  bool bare_ = false;  // only the plot
  Ticks xTicks_, yTicks_, barTicks_;
  std::vector<std::vector<StatusKind>> legendLines_;
  std::vector<LegendPlace> legend_;
  std::size_t below_ = 0;
  Picture picture_;
};

/// One line of text as it can be drawn: control characters are blanks, bytes that are no UTF-8 are replacement
/// characters. Longer texts end in "…".
std::string DrawnText(std::string_view text, std::size_t characters);

}  // namespace quiverion
