#pragma once

#include <string>
#include <vector>

#include "platform/files/file_system.h"

namespace quiverion::cli {

/// The files that the inputs of a call stand for: a directory stands for those of its files that `isMeant` accepts, in
/// the order of the file list. Throws SystemError.
std::vector<std::string> FilesOf(FileSystem& files, const std::vector<std::string>& inputs,
                                 bool (*isMeant)(const std::string& name));

/// Two files of the same name without extension, whose results would be one file; empty if there are none.
std::vector<std::string> FilesOfSameName(const std::vector<std::string>& paths);

}  // namespace quiverion::cli
