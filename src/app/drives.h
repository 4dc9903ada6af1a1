#pragma once

#include <string>
#include <vector>

namespace quiverion {

/// The mounted volumes, sorted; always including the root.
std::vector<std::string> MountedDrives();

}  // namespace quiverion
