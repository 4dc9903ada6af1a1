#include <sys/resource.h>

#include "support/peak_memory.h"

namespace quiverion::test {

long PeakMemory() {
  struct rusage usage {};
  ::getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

}  // namespace quiverion::test
