#pragma once

namespace quiverion::test {

/// Peak memory of the process in kilobytes.
long PeakMemory();

}  // namespace quiverion::test
