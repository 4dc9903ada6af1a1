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

/// The four columns of a data line as text.
struct DatColumns {
  std::string_view x, y, u, v;
};

/// Cuts a line of the usual shape quickly: at least 8 columns between blanks, nothing else but visible characters, ended
/// by a line end within 128 characters. Returns the bytes taken, line end included; 0 where the line has another shape.
/// `text` must be readable for DatFields::kPadding bytes behind its end, and hold no comma in the line.
std::size_t CutUsualDatLine(std::string_view text, DatColumns& columns);

/// Reads a plain decimal number of at most fifteen digits that fills `text`, with the bits of the numeric-prefix rule.
/// False where the text has another shape. `text` must be readable for 16 bytes behind its end.
bool ReadPlainNumber(std::string_view text, double& value);

/// Both at once: the numbers of ParseDatLine to the bit and the bytes taken, or 0.
std::size_t ParseUsualDatLine(std::string_view text, DatVector& vector);

}  // namespace quiverion
