#pragma once

#include <string>

#include "field/context.h"

namespace quiverion {

/// Resets the current field and fills it from a VAS, DAT or VEC file, chosen by the extension. Logs the
/// announcement and the outcome; a failure sets `abortCurrentFile` and leaves the field partly reset and
/// partly filled.
void LoadOriginalFile(Context& context, const std::string& path);

}  // namespace quiverion
