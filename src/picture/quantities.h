#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "field/vector_field.h"

/// What can be shown of a vector field as colours, and what its values are called.
namespace quiverion {

/// A quantity behind the arrows.
enum class Quantity { none, speed, u, v, vorticity, swirl2, divergence, status };

/// How a quantity is named. `unit` is empty for a status.
struct QuantityTexts {
  Quantity quantity;
  std::string_view option;  ///< on the command line
  std::string_view name;    ///< in menus
  std::string_view symbol;  ///< at the colour bar
  std::string_view unit;
  bool isSigned;  ///< limits are symmetric about 0
};

/// All quantities, in the order of menus.
const std::array<QuantityTexts, 8>& AllQuantities();
const QuantityTexts& TextsOf(Quantity quantity);

/// The background that a VAS file asks for.
Quantity QuantityOf(Background background);

/// The values of a quantity at all points, one-based like the velocities; invalid points have values, too. Everything
/// but u and v is computed into `derivedScalar` of the field. Values that arithmetic cannot give (two equal positions,
/// an overflow) are not finite. The quantity is neither none nor status.
const Grid<double>& ValuesOf(VectorField& field, Quantity quantity);

/// Square root of u² + v², also if a square is too large for a double.
double SpeedOf(double u, double v);

/// Results of the statistics, whose components are no velocities.
enum class StatisticResult { mean, standardDeviation, squares, product, turbulence, dissipation };

/// What the two components of a field are.
struct ComponentTexts {
  std::string_view title;  ///< of the whole field; empty for a measured one
  std::string_view u, v;   ///< `v` is empty if there is no second component
  std::string_view uUnit, vUnit;
};

/// "u [m/s]"; without a unit only the symbol.
std::string WithUnit(std::string_view symbol, std::string_view unit);

/// Symbol and unit of a quantity of this field. What is derived from something else than velocities has no unit here.
std::string SymbolOf(const VectorField& field, Quantity quantity);

/// The statistic that a field is the result of, by its info text and the end of its file name; none if it is not known.
std::optional<StatisticResult> StatisticResultOf(const VectorField& field);
ComponentTexts ComponentsOf(const VectorField& field);

}  // namespace quiverion
