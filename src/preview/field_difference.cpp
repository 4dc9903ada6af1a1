#include "preview/field_difference.h"

namespace quiverion {

std::optional<VectorField> DifferenceOf(const VectorField& before, const VectorField& after) {
  if (before.columnCount != after.columnCount || before.rowCount != after.rowCount || before.posX != after.posX ||
      before.posY != after.posY) {
    return std::nullopt;
  }
  VectorField difference = after;
  const auto subtract = [](Grid<double>& from, const Grid<double>& what) {
    for (std::size_t k = 0; k < from.Values().size(); ++k) from.Values()[k] -= what.Values()[k];
  };
  subtract(difference.velX, before.velX);
  subtract(difference.velY, before.velY);
  return difference;
}

}  // namespace quiverion
