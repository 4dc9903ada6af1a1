#pragma once

#include <optional>
#include <string>
#include <vector>

#include "picture/compose.h"

namespace quiverion {

/// What `QuiverionView --picture` was asked for.
struct PictureOptions {
  std::string output;  ///< a file; a directory if there is more than one input
  std::vector<std::string> inputs;
  double width = 1200.0, height = 900.0;
  std::optional<Quantity> background;  ///< that of the file if none
  std::optional<Limits> limits;
  std::optional<double> reference;
  std::string macro;                ///< empty: none
  std::optional<std::size_t> step;  ///< so many commands of it; all if none
};

/// Draws without a window. Says on standard error what went wrong; returns the exit code of the program. A picture is
/// written completely or not at all.
int WritePictures(const PictureOptions& options);

}  // namespace quiverion
