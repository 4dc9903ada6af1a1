#pragma once

namespace quiverion::cli {

/// Scripts depend on these values.
enum ExitCode : int {
  kDone = 0,
  kFailed = 1,   // the run had errors, or the command failed
  kUsage = 2,    // nothing was read or written
  kAborted = 3,  // a signal, or Cancel after a write error
  kRefused = 4,  // the pre-run checks refused the run: nothing was written
};

}  // namespace quiverion::cli
