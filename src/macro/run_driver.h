#pragma once

#include <string>

#include "macro/run_observer.h"
#include "macro/session.h"

namespace quiverion {

/// Applies the session's macro to every selected file: loads it, runs the commands in list order, reports in the log
/// and shows the progress. Yields once before each file is loaded, after its title line, and once before each command;
/// only there can an abort request arrive. It ends the run before the next command; a load that follows it is
/// completed. What an operation does not handle itself is caught per command, logged, and ends the file. The outcome is
/// in the flags of the context.
///
/// `observer` is told of every step; null: nobody.
void RunMacro(Session& session, RunObserver* observer = nullptr);

/// "\r\nDauer: ..." with minutes if there are any; empty for a duration that is not positive (a run across midnight).
std::string DurationText(float seconds);

}  // namespace quiverion
