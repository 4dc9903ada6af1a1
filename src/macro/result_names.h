#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "macro/macro_event.h"

/// Names of results, which commands form from the name of the input.
namespace quiverion {

/// The name of a result relative to the directory of its input, with the system's separators.
std::string ResultName(std::string_view prefix, std::string_view input, std::string_view postfix);

/// Of a name relative to the directory of the inputs: the same for all spellings of one file.
std::string RelativeNameKey(std::string_view name);

/// For each of the names, all of one directory: whether the macro makes this file from another one of them.
std::vector<bool> ResultsAmong(const std::vector<std::string>& names, const MacroEventList& macro);

}  // namespace quiverion
