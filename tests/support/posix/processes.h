#pragma once

#include "support/program.h"

namespace quiverion::cli {

/// Runs the program and kills it after so many seconds. False where it has come to its end by then.
bool KillProgram(const Workplace& place, const std::vector<std::string>& arguments, double seconds);

}  // namespace quiverion::cli
