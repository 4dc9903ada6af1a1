#pragma once

namespace quiverion::test {

/// Ends the process from another thread than the one that hangs, where the system can with the trace of that one.
void EndWhatHangs();

}  // namespace quiverion::test
