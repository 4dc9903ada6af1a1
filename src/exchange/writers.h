#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "field/vector_field.h"
#include "platform/files/result_file.h"

/// Fields as files of other programs. The same field gives the same bytes: there are no dates in them. Positions in mm,
/// velocities in m/s, all doubles; velocities of invalid vectors are written, too, and the statuses say which they are.
/// Each writer throws SystemError as ResultFile does, and FormatError if the format cannot hold the field.
namespace quiverion::exchange {

/// Where a field stands in its series.
struct SeriesPlace {
  std::size_t number = 1;  // counted from 1
  double time = 0.0;
  bool isSeconds = false;  // otherwise the time counts fields
  bool hasTime = true;     // false: the field is on its own
};

/// The time of field `number` (from 1) with `step` seconds between fields; 0: the time counts fields.
SeriesPlace PlaceInSeries(std::size_t number, double step);

using FieldWriter = void (*)(ResultFile& file, const VectorField& field, const SeriesPlace& place);

/// netCDF classic with 64-bit offsets, variables u, v, chc and status (t, y, x); x and y ascend.
void WriteNetCdf(ResultFile& file, const VectorField& field, const SeriesPlace& place);

/// The beginning of a netCDF file with `count` fields of the size of the first one; WriteNetCdfRecord adds them.
/// `sources` are their file names.
void WriteNetCdfHeader(ResultFile& file, const VectorField& first, std::size_t count, const SeriesPlace& place,
                       const std::string& sources);
void WriteNetCdfRecord(ResultFile& file, const VectorField& field, const SeriesPlace& place);

/// VTK image data: vectors "velocity", scalars "status"; x and y ascend. The grid has to be regular.
void WriteVtk(ResultFile& file, const VectorField& field, const SeriesPlace& place);

/// ParaView's index of a series.
void WriteParaViewIndex(ResultFile& file, std::span<const std::string> names, double step);

/// Tecplot text with the columns x, y, u, v, status, and zones after one header.
void WriteTecplot(ResultFile& file, const VectorField& field, const SeriesPlace& place);
void WriteTecplotHeader(ResultFile& file);
void WriteTecplotZone(ResultFile& file, const VectorField& field, const SeriesPlace& place);

/// MAT file (version 5, uncompressed) with the names of PIVlab.
void WriteMatlab(ResultFile& file, const VectorField& field, const SeriesPlace& place);

/// Text with a line of names, commas and decimal points.
void WriteCsv(ResultFile& file, const VectorField& field, const SeriesPlace& place);

/// A kind of file, for the command line and for a window.
struct ExportKind {
  std::string_view name;
  std::string_view title;
  std::string_view extension;  // with "."
  FieldWriter write;
  std::string_view seriesExtension;  // of one file for a series; empty: there is none
};
std::span<const ExportKind> ExportKinds();
/// Null if there is none.
const ExportKind* FindExportKind(std::string_view name);

}  // namespace quiverion::exchange
