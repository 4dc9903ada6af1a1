#pragma once

#include <string_view>

#include "field/vector_field.h"
#include "platform/files/file_system.h"

namespace quiverion {

/// The message for a file that is not written by Korvo; a buffer load has one of its own.
inline constexpr std::string_view kNotFromKorvo = "    Ungültiges Dateiformat: Nicht von Korvo!";

/// Fills `field`, which has been reset, from a DAT file of Korvo. Throws FormatError and SystemError.
void ReadDat(VectorField& field, InputFile& file, std::string_view wrongKind = kNotFromKorvo);

}  // namespace quiverion
