#pragma once

#include <string>

#include "macro/session.h"

namespace quiverion {

/// Applies the session's macro to every selected file: loads it, runs the commands in list order, reports in
/// the log and shows the progress. Yields exactly twice per step: behind a file's title line and before each
/// command; there an abort request ends the run. What an operation does not handle itself is caught per
/// command, logged, and ends the file. The flags of the context tell the outcome.
void RunMacro(Session& session);

/// "\r\nDauer: ..." with minutes where there are any; empty for a duration that is not positive (a run across
/// midnight).
std::string DurationText(float seconds);

}  // namespace quiverion
