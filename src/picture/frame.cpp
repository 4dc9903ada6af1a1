#include "picture/frame.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "picture/plot_items.h"
#include "platform/text/text.h"

namespace quiverion {
namespace {

// Sizes in heights of the text.
constexpr double kLine = 1.5;
constexpr double kWidthOfCharacter = 0.6;  // on average, of common fonts; no font is known here
constexpr double kBarWidth = 1.1;
constexpr double kTick = 0.35;
constexpr double kSmallestPlot = 8.0;
constexpr std::size_t kBarSteps = 125;  // colours of the bar

std::string Velocity(double u, double v) {
  return "(" + NumberText(u, 4) + "; " + NumberText(v, 4) + ")";
}

void AppendOutline(Shapes& shapes, const Rectangle& area) {
  const Point corners[] = {
      {area.left, area.top}, {area.Right(), area.top}, {area.Right(), area.Bottom()}, {area.left, area.Bottom()}};
  for (std::size_t k = 0; k < 4; ++k) shapes.lines.push_back({corners[k], corners[(k + 1) % 4]});
}

}  // namespace

std::string DrawnText(std::string_view text, std::size_t characters) {
  std::string drawn;
  std::size_t lengthWithout = 0;  // of what is kept if there must be an ellipsis
  for (std::size_t count = 0; !text.empty(); ++count) {
    if (count == characters) return drawn.substr(0, lengthWithout) + "…";
    if (count + 1 == characters) lengthWithout = drawn.size();
    const char32_t character = TakeCodePoint(text);
    const bool control = character < 0x20 || (character >= 0x7F && character < 0xA0);
    const bool noCharacter = character == 0xFFFE || character == 0xFFFF;  // an SVG file with one cannot be read
    AppendUtf8(drawn, control ? U' ' : noCharacter ? U'\uFFFD' : character);
  }
  return drawn;
}

Frame::Frame(const VectorField& field, const FieldSummary& summary, const ShownValues& values,
             const PictureChoices& choices, const Limits& limits)
    : field_(field),
      summary_(summary),
      values_(values),
      choices_(choices),
      limits_(limits),
      text_(choices.textSize),
      ink_(choices.darkPaper ? Colour{230, 230, 230} : Colour{0, 0, 0}),
      faint_(choices.darkPaper ? Colour{110, 110, 110} : Colour{170, 170, 170}) {
  picture_.width = choices.width;
  picture_.height = choices.height;
  picture_.paper = choices.darkPaper ? Colour{30, 30, 30} : Colour{255, 255, 255};
  ChooseMap();
  picture_.plot = map_.plot;
  if (choices.coordinateSystem) AddGridLines();
  below_ = picture_.shapes.size();
  AddAxes();
  if (bare_) return;
  AddCaption();
  if (HasBar()) AddBar();
  AddLegend();
  if (choices.arrows) AddReferenceArrow();
}

bool Frame::HasBar() const {
  return values_.grid != nullptr;
}

double Frame::TextWidth(std::size_t characters) const {
  return kWidthOfCharacter * text_ * static_cast<double>(characters);
}

double Frame::LabelsWidth(const std::vector<double>& values, double step) const {
  std::size_t longest = 1;
  for (const double value : values) longest = std::max(longest, CharacterCount(TickText(value, step)));
  return TextWidth(longest);
}

std::string Frame::LegendText(StatusKind kind) const {
  return NameOf(kind, OriginOf(field_, choices_.processed)) + " " +
         std::to_string(summary_.counts[static_cast<std::size_t>(kind)]);
}

Frame::Margins Frame::MarginsFor(double leftLabels, double rightLabels) const {
  const double line = kLine * text_;
  Margins margins{.left = 0.5 * text_ + line + leftLabels + 2.0 * kTick * text_,
                  .top = 1.1 * text_ + line * static_cast<double>(CaptionLines().size()),
                  .right = std::max(1.5 * text_, LabelsWidth(xTicks_.values, xTicks_.step) / 2.0),
                  .bottom = 2.5 * line + line * static_cast<double>(legendLines_.size()) + 0.5 * text_};
  if (HasBar()) {
    margins.top = std::max(margins.top, line) + line;  // its symbol stands above it
    margins.right = (1.0 + kBarWidth + 3.0 * kTick) * text_ + std::max(rightLabels, 4.0 * text_);
    margins.right = std::max(margins.right, text_ + TextWidth(CharacterCount(SymbolOf(field_, choices_.quantity)) + 1));
  }
  return margins;
}

PlotMap Frame::MapWithin(const Margins& margins) const {
  const Rectangle area{margins.left, margins.top, std::max(choices_.width - margins.left - margins.right, 1.0),
                       std::max(choices_.height - margins.top - margins.bottom, 1.0)};
  return MapOf(choices_.view.value_or(summary_.extent), area, choices_.equalScales);
}

// The width of the labels depends on the ticks, these on the height of the plot: the second time it fits.
void Frame::ChooseMap() {
  legendLines_.emplace_back();
  double width = 0.0;
  for (std::size_t k = 0; k < kStatusKinds; ++k) {
    if (summary_.counts[k] == 0) continue;
    const auto kind = static_cast<StatusKind>(k);
    const double entry = TextWidth(CharacterCount(LegendText(kind)) + 4);
    if (width + entry > choices_.width - 2.0 * text_ && !legendLines_.back().empty()) {
      legendLines_.emplace_back();
      width = 0.0;
    }
    legendLines_.back().push_back(kind);
    width += entry;
  }
  double left = 3.0 * text_, right = 3.0 * text_;
  for (int round = 0; round < 2; ++round) {
    const Margins margins = MarginsFor(left, right);
    const bool fits = choices_.width - margins.left - margins.right >= kSmallestPlot * text_ &&
                      choices_.height - margins.top - margins.bottom >= kSmallestPlot * text_;
    if (!fits) {
      bare_ = true;
      map_ = MapWithin({1.0, 1.0, 1.0, 1.0});
      return;
    }
    map_ = MapWithin(margins);
    const Extent& extent = map_.extent;
    xTicks_ = TicksBetween(extent.left, extent.right, std::max(1, static_cast<int>(map_.plot.width / (6.0 * text_))));
    yTicks_ = TicksBetween(extent.lower, extent.upper, std::max(2, static_cast<int>(map_.plot.height / (3.0 * text_))));
    barTicks_ = TicksBetween(limits_.lower, limits_.upper,
                             std::clamp(static_cast<int>(map_.plot.height / (3.0 * text_)), 2, 8));
    left = LabelsWidth(yTicks_.values, yTicks_.step);
    right = LabelsWidth(barTicks_.values, barTicks_.step);
  }
}

std::vector<std::string> Frame::CaptionLines() const {
  std::vector<std::string> lines;
  const ComponentTexts components = ComponentsOf(field_);
  std::string name = field_.fileName;
  if (!components.title.empty()) name.append(" – ").append(components.title);
  lines.push_back(std::move(name));

  std::string counts = field_.headerLines[0];
  if (!counts.empty()) counts += " · ";
  counts += std::to_string(field_.columnCount) + " x " + std::to_string(field_.rowCount) + " Vektoren, " +
            std::to_string(summary_.valid) + " gültig";
  if (summary_.notFinite > 0) counts += ", " + std::to_string(summary_.notFinite) + " davon ohne endliche Werte";
  lines.push_back(std::move(counts));
  if (choices_.subtractU != 0.0 || choices_.subtractV != 0.0) {
    lines.push_back("abzüglich " + Velocity(choices_.subtractU, choices_.subtractV) + " m/s");
  }
  for (std::size_t k = 1; choices_.header && k < field_.headerLines.size(); ++k) {
    if (!field_.headerLines[k].empty()) lines.push_back(field_.headerLines[k]);
  }
  return lines;
}

void Frame::AddCaption() {
  const auto characters = static_cast<std::size_t>((choices_.width - text_) / TextWidth(1));
  double y = 0.5 * text_ + kLine * text_ / 2.0;
  bool first = true;
  for (const std::string& line : CaptionLines()) {
    AddLabel({0.5 * text_, y}, DrawnText(line, characters)).bold = std::exchange(first, false);
    y += kLine * text_;
  }
}

void Frame::AddAxes() {
  const Rectangle& plot = map_.plot;
  Shapes& lines = AddShapes(ink_, 1.0);
  AppendOutline(lines, plot);
  if (bare_) return;
  const double tick = kTick * text_;
  for (const double value : xTicks_.values) {
    const double x = map_.ToPictureX(value);
    lines.lines.push_back({{x, plot.Bottom()}, {x, plot.Bottom() + tick}});
    AddLabel({x, plot.Bottom() + tick + 0.7 * text_}, TickText(value, xTicks_.step), Align::middle);
  }
  for (const double value : yTicks_.values) {
    const double y = map_.ToPictureY(value);
    lines.lines.push_back({{plot.left - tick, y}, {plot.left, y}});
    AddLabel({plot.left - 1.5 * tick, y}, TickText(value, yTicks_.step), Align::end);
  }
  AddLabel({plot.left + plot.width / 2.0, plot.Bottom() + tick + 2.1 * text_}, "x [mm]", Align::middle);
  const double labels = LabelsWidth(yTicks_.values, yTicks_.step);
  Label& y =
      AddLabel({plot.left - 2.0 * tick - labels - 0.8 * text_, plot.top + plot.height / 2.0}, "y [mm]", Align::middle);
  y.upwards = true;
}

void Frame::AddGridLines() {
  Shapes& grid = AddShapes(faint_, 0.6);
  grid.inPlot = true;
  Shapes axes{.colour = ink_, .lineWidth = 1.4, .inPlot = true};
  const Rectangle& plot = map_.plot;
  for (const double value : xTicks_.values) {
    const double x = map_.ToPictureX(value);
    (value == 0.0 ? axes : grid).lines.push_back({{x, plot.top}, {x, plot.Bottom()}});
  }
  for (const double value : yTicks_.values) {
    const double y = map_.ToPictureY(value);
    (value == 0.0 ? axes : grid).lines.push_back({{plot.left, y}, {plot.Right(), y}});
  }
  picture_.shapes.push_back(std::move(axes));
}

void Frame::AddBar() {
  const Rectangle& plot = map_.plot;
  const Rectangle bar{plot.Right() + text_, plot.top, kBarWidth * text_, plot.height};
  const Palette& palette = PaletteOf(KindFor(limits_), choices_.darkPaper);
  const PaletteScale scale(limits_);
  // Each colour reaches to the top and is covered by the next, so that no seam is seen between two.
  for (std::size_t k = 0; k < kBarSteps; ++k) {
    const double part = (static_cast<double>(k) + 0.5) / kBarSteps;
    const double value = limits_.lower * (1.0 - part) + limits_.upper * part;
    const double height = bar.height * static_cast<double>(kBarSteps - k) / kBarSteps;
    AddShapes(palette[scale.IndexOf(value)], 0.0).areas.push_back({bar.left, bar.top, bar.width, height});
  }
  Shapes& frame = AddShapes(ink_, 1.0);
  AppendOutline(frame, bar);
  const double tick = kTick * text_;
  for (const double value : barTicks_.values) {
    const double part = value / (limits_.upper - limits_.lower) - limits_.lower / (limits_.upper - limits_.lower);
    const double y = bar.Bottom() - part * bar.height;
    if (!(y >= bar.top - 0.5 && y <= bar.Bottom() + 0.5)) continue;
    frame.lines.push_back({{bar.Right(), y}, {bar.Right() + tick, y}});
    AddLabel({bar.Right() + 1.5 * tick, y}, TickText(value, barTicks_.step));
  }
  AddLabel({bar.left, bar.top - 1.4 * text_}, SymbolOf(field_, choices_.quantity));
  AddBarEnds(bar);
}

// Triangles where values lie beyond the limits.
void Frame::AddBarEnds(const Rectangle& bar) {
  const Palette& palette = PaletteOf(KindFor(limits_), choices_.darkPaper);
  const PaletteScale scale(limits_);
  const double size = 0.6 * text_;
  const double middle = bar.left + bar.width / 2.0;
  const auto add = [&](double value, double base, double tip) {
    Shapes& shapes = AddShapes(palette[scale.IndexOf(value)], 1.0);
    shapes.triangles.push_back({{bar.left, base}, {bar.Right(), base}, {middle, tip}});
    AddShapes(ink_, 1.0).lines = {{{bar.left, base}, {middle, tip}}, {{middle, tip}, {bar.Right(), base}}};
  };
  if (values_.largest > limits_.upper) add(limits_.upper, bar.top, bar.top - size);
  if (values_.smallest < limits_.lower) add(limits_.lower, bar.Bottom(), bar.Bottom() + size);
}

void Frame::AddLegend() {
  double y = map_.plot.Bottom() + kTick * text_ + 3.9 * text_;
  for (const std::vector<StatusKind>& line : legendLines_) {
    double x = text_;
    for (const StatusKind kind : line) {
      const bool hidden = choices_.hidden[static_cast<std::size_t>(kind)];
      const std::string name = LegendText(kind);
      const double width = TextWidth(CharacterCount(name) + 2);
      const bool common = kind == CommonKind(summary_.counts);
      const Colour colour = ColourOf(common ? StatusKind::valid : kind, choices_.darkPaper);
      Shapes& sample = AddShapes(hidden ? faint_ : colour, 1.2);
      if (!common) AppendMark(sample, kind, {x + 0.4 * text_, y}, 1.6 * text_);
      if (kind < StatusKind::rejected) {
        AppendArrow(sample, {.reference = 1.0, .step = text_}, {x + 0.4 * text_, y}, 1.0, 0.0);
      }
      AddLabel({x + 1.2 * text_, y}, name).colour = hidden ? faint_ : ink_;
      legend_.push_back({{x, y - 0.75 * text_, width, kLine * text_}, kind});
      x += width + 1.8 * text_;
    }
    y += kLine * text_;
  }
}

void Frame::AddReferenceArrow() {
  ArrowScale scale = ScaleOf(summary_, choices_, map_);
  if (!(scale.reference > 0.0) || !std::isfinite(scale.reference)) return;
  const bool equal = scale.mode == ArrowMode::equalLength;
  const ComponentTexts components = ComponentsOf(field_);
  const auto textOf = [&](double speed) -> std::string {
    if (equal) return "gleiche Länge";
    const std::string number = NumberText(speed, 4) + " " + std::string(components.uUnit);
    return scale.mode == ArrowMode::squareRoot ? number + " (Wurzel)" : number;
  };
  const auto lengthOf = [&](double speed) { return std::fabs(ArrowLength(scale, speed)); };
  const auto widthOf = [&](double speed) { return lengthOf(speed) + TextWidth(CharacterCount(textOf(speed)) + 1); };
  // Below the right corner of the plot, but not on the name of the axis. A speed whose arrow would be cut or does not
  // fit is halved.
  const double begin = map_.plot.left + map_.plot.width / 2.0 + 3.0 * text_;
  const auto fits = [&](double speed) {
    return lengthOf(speed) <= kLongestArrow * scale.step && begin + widthOf(speed) <= choices_.width - 0.5 * text_;
  };
  double speed = equal ? scale.reference : RoundDown125(scale.reference);
  while (!equal && speed > 0.0 && !fits(speed)) speed = RoundDown125(speed / 2.0);
  if (!(speed > 0.0) || !fits(speed)) return;
  const Point end{std::max(map_.plot.Right(), begin + widthOf(speed)),
                  map_.plot.Bottom() + kTick * text_ + 2.1 * text_};
  AddLabel(end, textOf(speed), Align::end);
  scale.anchor = ArrowAnchor::tail;
  AppendArrow(AddShapes(ink_, 1.2), scale, {end.x - widthOf(speed), end.y}, scale.factor < 0.0 ? -speed : speed, 0.0);
}

Label& Frame::AddLabel(Point at, std::string text, Align align) {
  picture_.labels.push_back({.at = at, .text = std::move(text), .size = text_, .align = align, .colour = ink_});
  return picture_.labels.back();
}

Shapes& Frame::AddShapes(Colour colour, double lineWidth) {
  picture_.shapes.push_back({.colour = colour, .lineWidth = lineWidth});
  return picture_.shapes.back();
}

}  // namespace quiverion
