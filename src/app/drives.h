#pragma once

#include <string>
#include <vector>

namespace quiverion {

/// The mounted volumes, sorted; the root is always among them.
std::vector<std::string> MountedDrives();

}  // namespace quiverion
