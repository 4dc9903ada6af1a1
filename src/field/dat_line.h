#pragma once

#include <cstddef>
#include <string_view>

namespace quiverion {

/// The four numbers of a DAT data line.
struct DatVector {
  double x = 0.0;  // pixels
  double y = 0.0;
  double u = 0.0;  // m/s
  double v = 0.0;
};

/// Columns 1, 2, 7 and 8 of a data line by the numeric-prefix rule; only blanks separate columns. This is the
/// definition.
DatVector ParseDatLine(std::string_view line);

/// Parses a line of the usual shape quickly: at least 8 columns between single or repeated blanks, plain
/// decimal numbers of at most 15 digits without exponent in the four columns, ended by a line end. Returns
/// the bytes taken, line end included, with the numbers of ParseDatLine to the bit; 0 where the line has
/// another shape. `text` must be readable for DatFields::kPadding bytes behind its end, and hold no comma in
/// the line.
std::size_t ParseUsualDatLine(std::string_view text, DatVector& vector);

}  // namespace quiverion
