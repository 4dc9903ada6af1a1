#pragma once

#include <string>

#include "macro/command_catalogue.h"

/// The steps of a run with one file, for the driver and for previews. What an operation does not handle itself is
/// logged and ends the file (`abortCurrentFile`, `runHadError`).
namespace quiverion {

/// Loads a file as the current field.
void LoadStep(Context& context, const std::string& path);

/// The catalogue's row of a command; null if there is none, or if the command has no readable id, which is an error.
const CommandRow* FindStep(Context& context, const MacroEvent& event);

/// Runs a command; nothing for a menu or a null `row`.
void RunStep(const CommandRow* row, const CommandCall& call);

}  // namespace quiverion
