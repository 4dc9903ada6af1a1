#pragma once

#include <algorithm>
#include <string>

#include "platform/files/paths.h"

namespace quiverion::test {

/// A text of the program with "/" in paths on every system, for comparisons.
inline std::string WithSlashes(std::string text) {
  std::replace(text.begin(), text.end(), kPathSeparator, '/');
  return text;
}

}  // namespace quiverion::test
