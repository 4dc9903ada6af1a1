#pragma once

#include <string>
#include <string_view>

#include "field/context.h"

namespace quiverion {

/// True if `path` ends in ".vas", in upper or lower case.
bool HasVasExtension(std::string_view path);

/// Writes the current field to `path`, whose extension must be ".vas", in upper or lower case. Missing directories are
/// created. Logs the announcement and the outcome. A failure sets `runHadError`, never `abortCurrentFile`; Cancel on a
/// full disk also sets `userAbortRequested`. The file appears whole or not at all.
void SaveVas(Context& context, const std::string& path);

}  // namespace quiverion
