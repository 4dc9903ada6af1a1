#pragma once

#include <string>

#include "macro/session.h"

namespace quiverion {

/// Applies the session's macro to every selected file: loads it, runs the commands in list order, reports in
/// the log and shows the progress. Yields once before each file is loaded, after its title line, and once before each
/// command; only there can an abort request arrive. It ends the run: a file that is being loaded is loaded to its end. What an operation does not handle itself is caught per
/// command, logged, and ends the file. The flags of the context tell the outcome.
void RunMacro(Session& session);

/// "\r\nDauer: ..." with minutes if there are any; empty for a duration that is not positive (a run across midnight).
std::string DurationText(float seconds);

}  // namespace quiverion
