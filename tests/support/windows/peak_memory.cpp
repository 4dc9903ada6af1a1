#include "platform/windows/paths.h"
// After the header that includes windows.h.
#include <psapi.h>

#include "support/peak_memory.h"

namespace quiverion::test {

long PeakMemory() {
  PROCESS_MEMORY_COUNTERS counters{};
  ::K32GetProcessMemoryInfo(::GetCurrentProcess(), &counters, sizeof counters);
  return static_cast<long>(counters.PeakWorkingSetSize / 1024);
}

}  // namespace quiverion::test
