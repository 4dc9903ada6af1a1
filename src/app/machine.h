#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/files/file_system.h"
#include "platform/process/clock.h"

namespace quiverion {

/// What the program needs from the machine it runs on. The references must outlive the window. The files are read from
/// a second thread, too.
struct Machine {
  FileSystem& files;
  const Clock& clock;
  std::function<std::vector<std::string>()> listDrives;
  std::string startDirectory;
  char decimalSeparator = '.';
  std::string helpFile = {};
};

}  // namespace quiverion
