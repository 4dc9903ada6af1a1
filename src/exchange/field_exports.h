#pragma once

#include <string>

#include "field/context.h"

namespace quiverion::exchange {

/// The current field as a file of another program. Each logs its announcement and "fertig"; missing directories are
/// created, and an existing file is replaced once the new one is complete. A failure is logged and sets `runHadError`,
/// never `abortCurrentFile`; Cancel on a full disk also sets `userAbortRequested`.
void ExportNetCdf(Context& context, const std::string& path);

/// VTK image data (.vti).
void ExportVtk(Context& context, const std::string& path);

/// Positions, both components and the status of every vector.
void ExportTecplotField(Context& context, const std::string& path);

}  // namespace quiverion::exchange
