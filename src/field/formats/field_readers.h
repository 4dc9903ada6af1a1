#pragma once

#include <string_view>

#include "field/context.h"

/// The readers of vector fields.
namespace quiverion {

/// What a file is read for. The buffer keeps grid size, velocities and statuses only, and has some messages of its own.
enum class LoadTarget { field, buffer };

/// Fills `field`, whose header has been reset, from an open file. Throws FormatError if the file is not of this format,
/// SystemError for any other failure; `field` is then partly filled. Warnings are logged and set `runHadError`.
using FieldReader = void(Context& context, VectorField& field, InputFile& file, LoadTarget target);

/// A VAS file; for the buffer what follows the statuses is not read. More than 50 streamlines are a warning.
void ReadVas(Context& context, VectorField& field, InputFile& file, LoadTarget target);

/// A DAT file of Korvo.
void ReadDat(Context& context, VectorField& field, InputFile& file, LoadTarget target);

/// A VEC file of DaVis. A status that is not 0 to 4 is a warning.
void ReadVec(Context& context, VectorField& field, InputFile& file, LoadTarget target);

/// The reader for an extension in upper case, without "."; null for any other.
FieldReader* ReaderOf(std::string_view extension);

}  // namespace quiverion
