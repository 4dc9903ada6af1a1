#pragma once

namespace quiverion::test {

/// Kilobytes of memory that the process has needed at most.
long PeakMemory();

}  // namespace quiverion::test
