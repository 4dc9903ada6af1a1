#pragma once

#include <string>

#include "field/context.h"

/// The current field, or a quantity derived from it, as a text file for other programs: tab-separated tables for
/// Stanford, blank-separated triples for TecPlot, semicolon-separated matrices for Matlab. doc/formats/exports.md
/// describes the lines.
///
/// Each logs its announcement and "fertig". Missing directories are created; an existing file is replaced once the new
/// one is complete. A failure to open or write, or to compute a value that is written, is logged and sets
/// `runHadError`, never `abortCurrentFile`; Cancel on a full disk also sets `userAbortRequested`. Those with a derived
/// quantity fill `derivedScalar` first, before the file is opened; its arithmetic errors (SystemError) are thrown.
namespace quiverion {

/// All valid vectors with their magnitude, row by row; the Galilei transformation in the header.
void ExportStanfordVectorField(Context& context, const std::string& path);

/// Squared swirling strength (1/s², with sign) as a table, a line per column of the grid, last row first.
void ExportStanfordSwirl2(Context& context, const std::string& path);

/// Vorticity (1/s), likewise.
void ExportStanfordVorticity(Context& context, const std::string& path);

/// Mean velocity of the valid vectors of each row; a row without any has no line.
void ExportStanfordVelocityProfile(Context& context, const std::string& path);

/// x, y and swirling strength (1/s, negative if the flow turns clockwise) of every point, column by column, last row
/// first.
void ExportTecPlotSwirl(Context& context, const std::string& path);

/// Vorticity (1/s), likewise.
void ExportTecPlotVorticity(Context& context, const std::string& path);

/// Position and velocity of every grid point, row by row; velocity 0 if the vector is invalid.
void ExportMatlabVectorField(Context& context, const std::string& path);

/// Squared swirling strength as a matrix with the positions in its first line and column, last row first.
void ExportMatlabSwirl2(Context& context, const std::string& path);

}  // namespace quiverion
