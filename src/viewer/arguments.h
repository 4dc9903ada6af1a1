#pragma once

#include <optional>
#include <string>
#include <vector>

#include "viewer/picture_command.h"

namespace quiverion {

/// What the command line asks for.
struct ViewerArguments {
  std::optional<PictureOptions> picture;  ///< draw without a window
  std::vector<std::string> files;         ///< to show in the window
  std::optional<int> exitCode;            ///< nothing more to do: help was shown, or the call was wrong
};

/// Reads the arguments; prints help and what is wrong with them.
ViewerArguments ReadArguments(std::vector<std::string> arguments);

}  // namespace quiverion
