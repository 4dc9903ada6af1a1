#pragma once

#include <functional>

#include "macro/session.h"

namespace quiverion {

/// Checks that a run can succeed: input files and files for the buffer can be opened, results are not to be
/// written onto a CD, the drive has room for the expected output. Asks through the user interface; reads and
/// writes no field. Returns true where the run may start.
bool PreRunChecks(Session& session);

/// What the Start button does: files and commands must be there, then the checks, then the run. `beforeRun` is called
/// when nothing stands in the way any more. Returns false where the run was refused and nothing was written.
bool StartRun(Session& session, const std::function<void()>& beforeRun = {});

}  // namespace quiverion
