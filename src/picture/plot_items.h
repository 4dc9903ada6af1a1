#pragma once

#include "picture/compose.h"

/// What is drawn inside the plot.
namespace quiverion {

/// The colours of a background, marks of single vectors included if the grid is too fine for shapes.
Cells CellsOf(const VectorField& field, const FieldSummary& summary, const Grid<double>* values,
              const PictureChoices& choices, const PlotMap& map, const Limits& limits);

/// Arrows and marks of vectors.
std::vector<Shapes> VectorShapes(const VectorField& field, const FieldSummary& summary, const PictureChoices& choices,
                                 const PlotMap& map, const ArrowScale& scale);

/// The scale of arrows in this plot.
ArrowScale ScaleOf(const FieldSummary& summary, const PictureChoices& choices, const PlotMap& map);

/// The most frequent kind of vectors with an arrow. It has the colour of valid ones and no mark: colours and marks show
/// what is special.
StatusKind CommonKind(const StatusCounts& counts);

/// Appends the sign for a kind of vectors, for grey print: a cross for rejected ones, a diamond for filled ones and so
/// on. Valid ones have none.
void AppendMark(Shapes& shapes, StatusKind kind, Point at, double size);

}  // namespace quiverion
