#pragma once

#include <string>
#include <vector>

#include "platform/files/file_system.h"

namespace quiverion {

/// True for a name with the extension of a file that can be loaded: VAS, VEC, DAT, any case.
bool IsSeriesFile(const std::string& name);

/// The files of a directory that can be loaded, in the order of the file list: by name without regard to case. Without
/// names that hold a path separator. Throws SystemError.
std::vector<std::string> ListSeriesFiles(FileSystem& files, const std::string& directory);

}  // namespace quiverion
