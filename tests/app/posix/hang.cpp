#include <unistd.h>

#include <csignal>

#include "app/hang.h"

namespace quiverion::test {

void EndWhatHangs() {
  ::kill(::getpid(), SIGABRT);  // arrives in the thread that hangs
}

}  // namespace quiverion::test
