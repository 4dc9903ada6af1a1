#pragma once

#include "messages/system_error.h"

namespace quiverion::test {

/// The number of the SystemError that `action` throws; 0 if it throws none.
template <class Action>
int ErrorOf(Action action) {
  try {
    action();
  } catch (const SystemError& error) {
    return static_cast<int>(error.Number());
  }
  return 0;
}

}  // namespace quiverion::test
