#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "field/context.h"
#include "macro/macro_event.h"

namespace quiverion {

/// All state of the program: the context of the operations, the macro and the inputs of a run. The program creates one,
/// a test as many as it needs.
struct Session {
  Session(FileSystem& files, UserInterface& ui, RunLog& log, const Clock& clock) : context(files, ui, log, clock) {}

  Context context;

  MacroEventList macro;

  std::vector<std::string> selectedFiles;  // names without directory, in the order of the file list
  std::string inputDirectory;              // ends in a separator

  std::int32_t SelectedFileCount() const { return static_cast<std::int32_t>(selectedFiles.size()); }
};

}  // namespace quiverion
