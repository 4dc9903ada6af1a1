#pragma once

#include <string>

namespace quiverion {

/// "noch etwa 3 min 20 s". The smaller unit is left out if it would not matter.
std::string RemainingTimeText(double seconds);

}  // namespace quiverion
