#include "operations/commands/transformations.h"

#include <algorithm>
#include <span>
#include <string>
#include <utility>

#include "log/log_lines.h"
#include "operations/kernels/velocity_changes.h"
#include "platform/numeric/checked_real.h"
#include "platform/text/numbers.h"

namespace quiverion {
namespace {

double Transformed(CheckedReal coordinate, double factor, double shift) {
  return (coordinate * factor + shift).Value();
}

void TransformAll(std::span<double> coordinates, double factor, double shift) {
  for (double& coordinate : coordinates) coordinate = Transformed(coordinate, factor, shift);
}

void TransformGeometry(VectorField& field, const CoordinateTransformation& t) {
  TransformAll(field.posX, t.fakX, t.deltaX);
  TransformAll(field.posY, t.fakY, t.deltaY);
  field.galileiPointX = Transformed(field.galileiPointX, t.fakX, t.deltaX);
  field.galileiPointY = Transformed(field.galileiPointY, t.fakY, t.deltaY);
  for (std::int32_t k = 0; k < std::min(field.streamlineCount, kMaxStreamlines); ++k) {
    Streamline& streamline = field.streamlines[static_cast<std::size_t>(k)];
    streamline[0] = Transformed(streamline[0], t.fakX, t.deltaX);
    streamline[1] = Transformed(streamline[1], t.fakY, t.deltaY);
  }
  field.offsetX = (CheckedReal(field.offsetX) + t.deltaX).Value();
  field.offsetY = (CheckedReal(field.offsetY) + t.deltaY).Value();
}

template <class T>
void ReverseColumns(Grid<T>& grid) {
  for (std::int32_t j = 1; j <= grid.Rows(); ++j) std::reverse(grid.Row(j), grid.Row(j) + grid.Columns());
}

template <class T>
void ReverseRows(Grid<T>& grid) {
  for (std::int32_t j = 1; j <= grid.Rows() / 2; ++j) {
    std::swap_ranges(grid.Row(j), grid.Row(j) + grid.Columns(), grid.Row(grid.Rows() + 1 - j));
  }
}

// Adds to the valid vectors. Also used to subtract: adding the negative number gives the same bits.
void ShiftField(Context& context, double x, double y) {
  VectorField& field = context.field;
  ShiftVelocities(field, x, y);
  field.galileiPointSet = kFlagFalse;
  field.galileiVelX = (CheckedReal(field.galileiVelX) - x).Value();
  field.galileiVelY = (CheckedReal(field.galileiVelY) - y).Value();
  LogLines(context.log, {kDoneText});
}

std::string ConstantVector(const Context& context, double x, double y) {
  return "Konstanten Vektor (" + FormatNumber(x, context.decimalSeparator) + "; " +
         FormatNumber(y, context.decimalSeparator) + ")";
}

}  // namespace

void TransformCoordinates(Context& context, const CoordinateTransformation& trafo) {
  context.log.WriteLogLine("Koordinatentransformation... ");
  const bool sameVelocities = trafo.fakVecX == 1.0 && trafo.fakVecY == 1.0;
  const bool sameCoordinates = trafo.deltaX == 0.0 && trafo.deltaY == 0.0 && trafo.fakX == 1.0 && trafo.fakY == 1.0;
  if (sameVelocities && sameCoordinates) {
    LogLines(context.log, {"Identische Transformation -> sofort fertig"});
    return;
  }
  TransformGeometry(context.field, trafo);
  if (!sameVelocities) ScaleVelocities(context.field, trafo.fakVecX, trafo.fakVecY);
  LogLines(context.log, {kDoneText});
}

void MirrorField(Context& context, bool mirrorX, bool mirrorY) {
  context.log.WriteLogLine("Vektorfeld spiegeln... ");
  if (!mirrorX && !mirrorY) {
    LogLines(context.log, {"Keine Option ausgewählt -> fertig"});
    return;
  }
  VectorField& field = context.field;
  if (mirrorX) {
    ReverseColumns(field.velX);
    ReverseColumns(field.velY);
    ReverseColumns(field.status);
    std::reverse(field.posX.begin(), field.posX.end());
  }
  if (mirrorY) {
    ReverseRows(field.velX);
    ReverseRows(field.velY);
    ReverseRows(field.status);
    std::reverse(field.posY.begin(), field.posY.end());
  }
  LogLines(context.log, {kDoneText});
}

void AddConstantVector(Context& context, double x, double y) {
  context.log.WriteLogLine(ConstantVector(context, x, y) + " zum Vektorfeld addieren... ");
  ShiftField(context, x, y);
}

void SubtractConstantVector(Context& context, double x, double y) {
  context.log.WriteLogLine(ConstantVector(context, x, y) + " vom Vektorfeld subtrahieren... ");
  ShiftField(context, -x, -y);
}

}  // namespace quiverion
