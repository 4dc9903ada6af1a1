#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "macro/macro_event.h"

/// What a macro needs of the buffer as the files before left it.
namespace quiverion {

/// What is known of the buffer before a file's first command.
struct BufferBefore {
  std::string copiedFrom;                 ///< the name that it has before the run; see BufferField
  std::vector<std::string> earlierPaths;  ///< the files that the run would take before this one
};

/// True if a command fills or reads the buffer.
bool UsesBuffer(const MacroEventList& macro);

/// True if the outcome of the macro for the first file depends on what the buffer contains before the run.
bool UsesBufferBeforeRun(const MacroEventList& macro, const std::string& copiedFrom);

/// The index of the first command whose outcome depends on what files before have left in the buffer; none if there is
/// no such command. Says rather too often that there is one.
std::optional<std::size_t> CommandThatNeedsEarlierFiles(const MacroEventList& macro, const BufferBefore& before);

}  // namespace quiverion
