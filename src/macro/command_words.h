#pragma once

#include <string>
#include <vector>

#include "macro/macro_event.h"

/// The parameters of a command in words, for a person who reads a macro. Both are UTF-8 and may contain any character
/// that a text of the macro contains. A value that is missing or cannot be read is shown as "?".
namespace quiverion {

/// One line: "Median 5 x 5, Abweichung > 30 %", "Ergebnis\ ... _g"; empty for a command without parameters. The search
/// for faulty vectors shows only what it uses.
std::string ParametersInBrief(const MacroEvent& event);

/// A line for each parameter: "Prefix: Ergebnis\".
std::vector<std::string> ParametersInWords(const MacroEvent& event);

}  // namespace quiverion
