#include "picture/quantities.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "messages/failure.h"
#include "operations/kernels/derived_scalar.h"
#include "operations/kernels/derived_scalar_plain.h"
#include "platform/text/text.h"

namespace quiverion {
namespace {

constexpr std::array<QuantityTexts, 8> kQuantities = {{
    {Quantity::none, "none", "Kein Hintergrund", "", "", false},
    {Quantity::speed, "speed", "Betrag", "|v|", "m/s", false},
    {Quantity::u, "u", "u", "u", "m/s", true},
    {Quantity::v, "v", "v", "v", "m/s", true},
    {Quantity::vorticity, "vorticity", "Vorticity", "\u03c9", "1/s", true},
    {Quantity::swirl2, "swirl2", "(Swirling Strength)\u00b2", "\u03bb\u00b2", "1/s\u00b2", true},
    {Quantity::divergence, "divergence", "Divergenz", "div", "1/s", true},
    {Quantity::status, "status", "Status", "Status", "", false},
}};

// An arithmetic error ends the computation of a result. A picture shows what there is.
template <class Calculate, class Formula>
void Compute(VectorField& field, Calculate calculate, Formula formula) {
  if (!Attempt([&] { calculate(field); })) return;
  plain::ComputeDerived<double>(field, field.derivedScalar, formula);
}

void ComputeSpeed(VectorField& field) {
  const auto u = field.velX.Values(), v = field.velY.Values();
  const auto speed = field.derivedScalar.Values();
  for (std::size_t k = 0; k < speed.size(); ++k) speed[k] = SpeedOf(u[k], v[k]);
}

struct StatisticRow {
  StatisticResult result;
  std::string_view fileEnd;  // upper case, of the proposed name
  ComponentTexts components;
};

constexpr std::array<StatisticRow, 6> kStatistics = {{
    {StatisticResult::mean, "AVG.VAS", {"Mittelwert", "<u>", "<v>", "m/s", "m/s"}},
    {StatisticResult::standardDeviation, "RMS.VAS", {"Standardabweichung", "s(u)", "s(v)", "m/s", "m/s"}},
    {StatisticResult::squares,
     "USANDVS.VAS",
     {"Mittlere Schwankungsquadrate", "<u'\u00b2>", "<v'\u00b2>", "m\u00b2/s\u00b2", "m\u00b2/s\u00b2"}},
    {StatisticResult::product, "USTIMESVS.VAS", {"Mittleres Schwankungsprodukt", "<u'v'>", "", "m\u00b2/s\u00b2", ""}},
    {StatisticResult::turbulence, "TU.VAS", {"Turbulenzgrad und -produktion", "Tu", "P", "", "m\u00b2/s\u00b3"}},
    {StatisticResult::dissipation, "DISS.VAS", {"Energiedissipationsrate", "D", "", "m\u00b2/s\u00b3", ""}},
}};

constexpr std::string_view kMeans = "Mittelwerte erzeugt aus der Kollektion: ";

const StatisticRow* StatisticRowOf(const VectorField& field) {
  const std::string_view info = field.infoText;
  if (info.starts_with("Energiedissipationsrate erzeugt aus der Kollektion: ")) return &kStatistics.back();
  if (!info.starts_with(kMeans)) return nullptr;
  const std::string name = AsciiUpper(field.fileName);
  const auto row = std::ranges::find_if(kStatistics, [&](const auto& each) { return name.ends_with(each.fileEnd); });
  return row == kStatistics.end() ? nullptr : &*row;
}

}  // namespace

const std::array<QuantityTexts, 8>& AllQuantities() {
  return kQuantities;
}

const QuantityTexts& TextsOf(Quantity quantity) {
  return *std::ranges::find(kQuantities, quantity, &QuantityTexts::quantity);
}

Quantity QuantityOf(Background background) {
  if (background == Background::swirl2) return Quantity::swirl2;
  return background == Background::vorticity ? Quantity::vorticity : Quantity::none;
}

double SpeedOf(double u, double v) {
  const double square = u * u + v * v;
  const bool exact = square >= 1E-290 && square <= 1E300;
  return exact ? std::sqrt(square) : std::hypot(u, v);
}

const Grid<double>& ValuesOf(VectorField& field, Quantity quantity) {
  switch (quantity) {
    case Quantity::u:
      return field.velX;
    case Quantity::v:
      return field.velY;
    case Quantity::vorticity:
      Compute(field, CalcVorticity, plain::Vorticity<double>);
      break;
    case Quantity::swirl2:
      Compute(field, CalcSwirlingStrength, plain::SwirlingStrength<double>);
      break;
    case Quantity::divergence:
      Compute(field, CalcDivergence, plain::Divergence<double>);
      break;
    default:
      ComputeSpeed(field);
  }
  return field.derivedScalar;
}

std::optional<StatisticResult> StatisticResultOf(const VectorField& field) {
  const StatisticRow* const row = StatisticRowOf(field);
  return row == nullptr ? std::nullopt : std::optional(row->result);
}

ComponentTexts ComponentsOf(const VectorField& field) {
  if (const StatisticRow* const row = StatisticRowOf(field)) return row->components;
  if (field.infoText.starts_with(kMeans)) return {"Ergebnis einer Statistik", "u", "v", "", ""};
  return {"", "u", "v", "m/s", "m/s"};
}

std::string WithUnit(std::string_view symbol, std::string_view unit) {
  std::string text(symbol);
  if (!unit.empty()) text.append(" [").append(unit).append("]");
  return text;
}

std::string SymbolOf(const VectorField& field, Quantity quantity) {
  const ComponentTexts components = ComponentsOf(field);
  const QuantityTexts& texts = TextsOf(quantity);
  if (quantity == Quantity::u) return WithUnit(components.u, components.uUnit);
  if (quantity == Quantity::v) return WithUnit(components.v, components.vUnit);
  const bool ofVelocities = components.uUnit == "m/s" && components.vUnit == "m/s";
  if (ofVelocities) return WithUnit(texts.symbol, texts.unit);
  const bool same = quantity == Quantity::speed && components.uUnit == components.vUnit;
  return WithUnit(texts.symbol, same ? components.uUnit : "");
}

}  // namespace quiverion
