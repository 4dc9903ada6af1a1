#pragma once

#include <string>
#include <string_view>

#include "field/context.h"

namespace quiverion {

/// Fills the current field, which has been reset, from a VAS file. Throws FormatError and SystemError; logs a
/// warning where the file has more than 50 streamlines.
void ReadVas(Context& context, InputFile& file);

/// Fills grid, velocities and statuses of `field` (and its header, as that comes first) from a VAS file; what stands
/// behind the statuses is not read. Throws FormatError and SystemError.
void ReadVasGrid(VectorField& field, InputFile& file);

/// True where `path` ends in ".vas" in any case.
bool HasVasExtension(std::string_view path);

/// Writes the current field to `path`, whose extension must be ".vas" in any case; missing directories are
/// created. Logs the announcement and the outcome. A failure sets `runHadError`, never `abortCurrentFile`;
/// Cancel on a full disk also sets `userAbortRequested`. The file appears whole or not at all.
void SaveVas(Context& context, const std::string& path);

}  // namespace quiverion
