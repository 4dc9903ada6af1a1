#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "sample_field.h"

/// The input formats and the collection, written without any code of the readers, as an independent check of them.
namespace quiverion::samples {

/// A VAS file. Reserved items have the values that the program writes, so that reading and saving the file gives the
/// same bytes.
std::string VasBytes(const SampleField& field);

/// How the data lines of a DAT file look. By default as Korvo writes them: one blank between columns, positions without
/// decimals, two to six decimals elsewhere.
struct DatShape {
  int width = 0;  ///< a shorter column gets blanks in front
  int positionDecimals = 0;
  int decimals = -1;       ///< of every column from the third on; -1: as Korvo
  bool exponents = false;  ///< 1.6e+01 in every column, with `decimals`
  int columns = 9;         ///< what goes beyond nine repeats the third and the ones after it
  std::string_view lineEnd = "\r\n";
};

/// A DAT file. Only valid vectors have a line; a field whose header text contains a comma is quoted. Throws
/// std::invalid_argument for a header text with a double quote or a line end.
std::string DatBytes(const SampleField& field, const DatShape& shape = {});

/// A VEC file of sub type 1 (nine frames), 2 (two frames) or 3 (ten frames). Pairs of frames that the status does not
/// select contain other displacements. Throws std::invalid_argument for another sub type and for a grid whose counts do
/// not fit the 16 bits of the header.
std::string VecBytes(const SampleField& field, int subType);

/// Status 0 to 4 of a vector in the VEC files of sub types 1 and 3: valid vectors are spread over the four
/// peaks.
std::int32_t VecStatus(const SampleField& field, int column, int row);

/// A collection of fields with one grid; `paths` (at most 128 characters) are their sources.
std::string CollectionBytes(const std::vector<SampleField>& fields, const std::vector<std::string>& paths);

/// UTF-8 to Windows-1252. Throws std::invalid_argument for characters that are not in Windows-1252.
std::string Windows1252Bytes(std::string_view utf8);

}  // namespace quiverion::samples
