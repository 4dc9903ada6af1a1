#pragma once

#include <string_view>

#include "field/context.h"

namespace quiverion {

/// The message for a simple VEC file with an odd number of rows; a buffer load has one of its own.
inline constexpr std::string_view kRowsNotDivisibleBy2 =
    "    Ungültiges VEC-Format: Anzahl der Zeilen nicht durch 2 teilbar (für 2 frames)!";

/// Fills `field`, which has been reset, from a VEC file of DaVis. Throws FormatError and SystemError; a
/// status that is not 0 to 4 is logged as a warning and sets `runHadError`.
void ReadVec(Context& context, VectorField& field, InputFile& file,
             std::string_view rowsNotDivisibleBy2 = kRowsNotDivisibleBy2);

}  // namespace quiverion
