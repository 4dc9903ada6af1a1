#include "picture/readout.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "operations/kernels/derived_scalar_plain.h"
#include "picture/scales.h"

namespace quiverion {
namespace {

constexpr int kDigits = 5;  // significant ones in readouts

std::string Number(double value) {
  return NumberText(value, kDigits);
}

double AngleOf(double x, double y) {
  if (x == 0.0 && y == 0.0) return std::numeric_limits<double>::quiet_NaN();
  return std::atan2(y, x) * 180.0 / std::numbers::pi;
}

void Add(std::string& text, std::string_view name, double value, std::string_view unit) {
  if (!text.empty()) text += "  ";
  text.append(name).append(" ").append(Number(value));
  if (!unit.empty()) text.append(" ").append(unit);
}

// Within half a step of the outer places.
std::int32_t PlaceNear(const AxisPlaces& axis, double position) {
  const bool inside = !axis.edges.empty() && position >= axis.edges.front() && position <= axis.edges.back();
  return inside ? NearestPlace(axis, position) : -1;
}

std::optional<GridPoint> PointNear(const FieldSummary& summary, Point position) {
  const std::int32_t column = PlaceNear(summary.x, position.x), row = PlaceNear(summary.y, position.y);
  if (column < 0 || row < 0) return std::nullopt;
  return GridPoint{summary.x.indices[static_cast<std::size_t>(column)] + 1,
                   summary.y.indices[static_cast<std::size_t>(row)] + 1};
}

}  // namespace

std::optional<GridPoint> PointUnder(const FieldSummary& summary, const PlotMap& map, Point picture) {
  if (!map.plot.Contains(picture)) return std::nullopt;
  return PointNear(summary, map.ToField(picture));
}

VectorValues ValuesAt(const VectorField& field, GridPoint point) {
  const auto [i, j] = point;
  const double u = field.velX(i, j), v = field.velY(i, j);
  return {.x = field.posX[static_cast<std::size_t>(i - 1)],
          .y = field.posY[static_cast<std::size_t>(j - 1)],
          .u = u,
          .v = v,
          .speed = SpeedOf(u, v),
          .angle = AngleOf(u, v),
          .vorticity = plain::DerivedValue<double>(field, i, j, plain::Vorticity<double>),
          .swirl2 = plain::DerivedValue<double>(field, i, j, plain::SwirlingStrength<double>),
          .status = field.status(i, j)};
}

std::string ReadoutText(const VectorField& field, GridPoint point) {
  const VectorValues values = ValuesAt(field, point);
  const ComponentTexts components = ComponentsOf(field);
  std::string text = "i " + std::to_string(point.i) + "  j " + std::to_string(point.j);
  Add(text, "x", values.x, "");
  Add(text, "y", values.y, "mm");
  Add(text, components.u, values.u,
      components.v.empty() || components.uUnit == components.vUnit ? "" : components.uUnit);
  if (!components.v.empty()) Add(text, components.v, values.v, components.vUnit);
  if (components.v.empty()) text.append(" ").append(components.uUnit);
  if (components.title.empty() || StatisticResultOf(field) == StatisticResult::mean) {
    Add(text, "|v|", values.speed, "m/s");
    Add(text, "Winkel", values.angle, "\u00b0");
    Add(text, "\u03c9", values.vorticity, "1/s");
    Add(text, "\u03bb\u00b2", values.swirl2, "1/s\u00b2");
  }
  return text + "  " + NameOf(KindOf(values.status), OriginOf(field)) + " (" + std::to_string(values.status) + ")";
}

std::string DifferenceText(const VectorField& field, GridPoint from, GridPoint to) {
  const VectorValues a = ValuesAt(field, from), b = ValuesAt(field, to);
  const ComponentTexts components = ComponentsOf(field);
  std::string text;
  Add(text, "Abstand", SpeedOf(b.x - a.x, b.y - a.y), "mm");
  Add(text, "Richtung", AngleOf(b.x - a.x, b.y - a.y), "\u00b0");
  Add(text, "\u0394x", b.x - a.x, "mm");
  Add(text, "\u0394y", b.y - a.y, "mm");
  Add(text, "\u0394" + std::string(components.u), b.u - a.u, components.uUnit);
  if (!components.v.empty()) Add(text, "\u0394" + std::string(components.v), b.v - a.v, components.vUnit);
  if (components.uUnit == components.vUnit) {
    Add(text, "Betrag der Differenz", SpeedOf(b.u - a.u, b.v - a.v), components.uUnit);
  }
  return text;
}

std::vector<ProfileValue> ProfileAlong(const VectorField& field, const FieldSummary& summary, Point from, Point to) {
  std::vector<ProfileValue> profile;
  const double length = SpeedOf(to.x - from.x, to.y - from.y);
  const double step = std::min(summary.x.step, summary.y.step) / 4.0;  // no vector near the line is missed
  if (!(length > 0.0) || !std::isfinite(length) || !(step > 0.0)) return profile;
  const double count =
      std::min(std::ceil(length / step), 4.0 * (field.columnCount + static_cast<double>(field.rowCount)) + 4.0);
  for (std::int64_t k = 0; k <= static_cast<std::int64_t>(count); ++k) {
    const double part = static_cast<double>(k) / count;
    const Point at{from.x + (to.x - from.x) * part, from.y + (to.y - from.y) * part};
    const auto point = PointNear(summary, at);
    if (!point || (!profile.empty() && profile.back().point == *point)) continue;
    const VectorValues values = ValuesAt(field, *point);
    const double along = ((values.x - from.x) * (to.x - from.x) + (values.y - from.y) * (to.y - from.y)) / length;
    profile.push_back({along, *point, values});
  }
  return profile;
}

std::string ProfileText(const VectorField& field, const std::vector<ProfileValue>& profile) {
  const ComponentTexts components = ComponentsOf(field);
  const std::string v = components.v.empty() ? "\u2013" : WithUnit(components.v, components.vUnit);
  std::string text = "s [mm]\ti\tj\tx [mm]\ty [mm]\t" + WithUnit(components.u, components.uUnit) + "\t" + v + "\t" +
                     SymbolOf(field, Quantity::speed) + "\t" + SymbolOf(field, Quantity::vorticity) + "\tStatus\n";
  for (const auto& [distance, point, values] : profile) {
    text += NumberText(distance, 10) + "\t" + std::to_string(point.i) + "\t" + std::to_string(point.j);
    for (const double value : {values.x, values.y, values.u, values.v, values.speed, values.vorticity}) {
      text += "\t" + NumberText(value, 10);
    }
    text += "\t" + std::to_string(values.status) + "\n";
  }
  return text;
}

}  // namespace quiverion
