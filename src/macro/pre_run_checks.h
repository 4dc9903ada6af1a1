#pragma once

#include <functional>

#include "macro/run_observer.h"
#include "macro/session.h"

namespace quiverion {

/// Checks that a run can succeed: input files and files for the buffer can be opened, results would not be written to a
/// CD, the drive has room for the expected output. Asks through the user interface; reads and writes no fields. Returns
/// true if the run may start.
bool PreRunChecks(Session& session);

/// The action of the Start button: requires files and commands, makes the checks, and runs the macro. `beforeRun` is
/// called when nothing can prevent the run any more. Returns false if nothing was run: the checks refused it, or
/// another entry point is running (without a message).
bool StartRun(Session& session, const std::function<void()>& beforeRun = {}, RunObserver* observer = nullptr);

}  // namespace quiverion
