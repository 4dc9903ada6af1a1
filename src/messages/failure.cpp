#include "messages/failure.h"

namespace quiverion {

Failure FailureOf(const std::exception& error) {
  if (const auto* format = dynamic_cast<const FormatError*>(&error)) {
    return {AsSystemError(error), format->Message()};
  }
  return {AsSystemError(error)};
}

}  // namespace quiverion
