#include <algorithm>
#include <array>
#include <cmath>

#include "picture/readout.h"
#include "picture/scales.h"
#include "platform/text/text.h"

namespace quiverion {
namespace {

constexpr double kSmallestSide = 1E-290;  // pixels per unit are finite

struct Curve {
  std::string_view name;
  double VectorValues::*value;
  Colour onLight, onDark;
};

std::vector<Curve> CurvesOf(const VectorField& field) {
  const ComponentTexts components = ComponentsOf(field);
  std::vector<Curve> curves = {{components.u, &VectorValues::u, {0, 114, 178}, {86, 180, 233}}};
  if (!components.v.empty()) curves.push_back({components.v, &VectorValues::v, {213, 94, 0}, {240, 120, 30}});
  if (components.title.empty()) curves.push_back({"|v|", &VectorValues::speed, {0, 0, 0}, {240, 240, 240}});
  return curves;
}

// Ends of both axes, with some air around the values.
Extent ExtentOf(const std::vector<ProfileValue>& profile, const std::vector<Curve>& curves) {
  double lower = 0.0, upper = 0.0;
  for (const ProfileValue& each : profile) {
    for (const Curve& curve : curves) {
      const double value = each.values.*curve.value;
      if (each.values.status <= 0 || !(std::fabs(value) < 1E300)) continue;
      lower = std::min(lower, value);
      upper = std::max(upper, value);
    }
  }
  if (!(upper - lower > kSmallestSide)) upper = lower + 1.0;
  const double air = 0.05 * (upper - lower);
  double left = profile.empty() ? 0.0 : profile.front().distance,
         right = profile.empty() ? 1.0 : profile.back().distance;
  if (!(right - left > kSmallestSide)) right = left + 1.0;
  return {left, right, lower - (lower < 0.0 ? air : 0.0), upper + air};
}

class ProfileChart {
 public:
  ProfileChart(const VectorField& field, const std::vector<ProfileValue>& profile, const PictureChoices& choices)
      : field_(field), profile_(profile), text_(choices.textSize), dark_(choices.darkPaper), curves_(CurvesOf(field)) {
    ink_ = dark_ ? Colour{230, 230, 230} : Colour{0, 0, 0};
    picture_.width = choices.width;
    picture_.height = choices.height;
    picture_.paper = dark_ ? Colour{30, 30, 30} : Colour{255, 255, 255};
    const Rectangle area{6.0 * text_, 2.5 * text_, std::max(choices.width - 7.5 * text_, 1.0),
                         std::max(choices.height - 6.0 * text_, 1.0)};
    map_ = MapOf(ExtentOf(profile, curves_), area, false);
    picture_.plot = map_.plot;
  }

  Picture Draw() {
    DrawAxes();
    DrawCurves();
    return std::move(picture_);
  }

 private:
  void DrawAxes() {
    const Rectangle& plot = map_.plot;
    Shapes lines{.colour = ink_};
    lines.lines = {{{plot.left, plot.top}, {plot.left, plot.Bottom()}},
                   {{plot.left, plot.Bottom()}, {plot.Right(), plot.Bottom()}}};
    const Extent& extent = map_.extent;
    const Ticks x = TicksBetween(extent.left, extent.right, std::max(2, static_cast<int>(plot.width / (6.0 * text_))));
    for (const double value : x.values) {
      const double at = map_.ToPictureX(value);
      lines.lines.push_back({{at, plot.Bottom()}, {at, plot.Bottom() + 0.35 * text_}});
      AddLabel({at, plot.Bottom() + 1.1 * text_}, TickText(value, x.step), Align::middle, ink_);
    }
    const Ticks y =
        TicksBetween(extent.lower, extent.upper, std::max(2, static_cast<int>(plot.height / (3.0 * text_))));
    for (const double value : y.values) {
      const double at = map_.ToPictureY(value);
      lines.lines.push_back({{plot.left - 0.35 * text_, at}, {plot.left, at}});
      if (value == 0.0) lines.lines.push_back({{plot.left, at}, {plot.Right(), at}});
      AddLabel({plot.left - 0.5 * text_, at}, TickText(value, y.step), Align::end, ink_);
    }
    AddLabel({plot.left + plot.width / 2.0, plot.Bottom() + 2.6 * text_}, "s [mm]", Align::middle, ink_);
    picture_.shapes.push_back(std::move(lines));
  }

  void DrawCurves() {
    double x = map_.plot.left;
    for (const Curve& curve : curves_) {
      Shapes line{.colour = dark_ ? curve.onDark : curve.onLight, .lineWidth = 1.4, .inPlot = true};
      const Point* before = nullptr;
      Point last;
      for (const ProfileValue& each : profile_) {
        const double value = each.values.*curve.value;
        if (each.values.status <= 0 || !(std::fabs(value) < 1E300)) {
          before = nullptr;
          continue;
        }
        const Point at{map_.ToPictureX(each.distance), map_.ToPictureY(value)};
        if (before != nullptr) line.lines.push_back({last, at});
        line.areas.push_back({at.x - 1.5, at.y - 1.5, 3.0, 3.0});
        last = at;
        before = &last;
      }
      const ComponentTexts components = ComponentsOf(field_);
      const std::string_view unit = curve.value == &VectorValues::v ? components.vUnit : components.uUnit;
      const std::string name = WithUnit(curve.name, unit);
      AddLabel({x, text_}, name, Align::start, line.colour);
      x += 0.6 * text_ * static_cast<double>(CharacterCount(name) + 3);
      picture_.shapes.push_back(std::move(line));
    }
  }

  void AddLabel(Point at, std::string text, Align align, Colour colour) {
    picture_.labels.push_back({.at = at, .text = std::move(text), .size = text_, .align = align, .colour = colour});
  }

  const VectorField& field_;
  const std::vector<ProfileValue>& profile_;
  const double text_;
  const bool dark_;
  std::vector<Curve> curves_;
  Colour ink_;
  PlotMap map_;
  Picture picture_;
};

}  // namespace

Picture ProfilePicture(const VectorField& field, const std::vector<ProfileValue>& profile,
                       const PictureChoices& choices) {
  return ProfileChart(field, profile, choices).Draw();
}

}  // namespace quiverion
