#pragma once

#include <string>
#include <vector>

#include "platform/files/file_system.h"

namespace quiverion {

/// True for a name with the extension of a file that can be loaded: VAS, VEC or DAT, in upper or lower case.
bool IsSeriesFile(const std::string& name);

/// The files of a directory that can be loaded, in the order of the file list: by name without regard to case. Names
/// that contain a path separator are left out. Throws SystemError.
std::vector<std::string> ListSeriesFiles(FileSystem& files, const std::string& directory);

}  // namespace quiverion
