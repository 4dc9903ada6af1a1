#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "dialogs/parameters/parameter_dialogs.h"
#include "field/context.h"

/// Asks for the parameters of a command, without any window code: decides which dialog to show, its presets, and what
/// an answer means.
namespace quiverion {

/// What the questions need: message boxes and files (from the context), the dialogs, the current directory of the main
/// window, and who wants to see the command while it is being edited.
struct EditingServices {
  Context& context;
  ParameterDialogs& dialogs;
  std::string directory;
  std::function<void(const MacroEvent&)> draft = {};
};

enum class EditOutcome {
  cancelled,      // the event is unchanged
  stored,         // also used for a new command without parameters
  removeCommand,  // the user's choice leaves nothing to do: the command is to be removed
};

/// Asks for the parameters of the command `event`, new or already in the macro, and stores them in it.
EditOutcome AskParameters(EditingServices& services, MacroEvent& event, bool isNew);

/// Adds the parameters that `event` lacks, with the values of a new command.
void AddDefaultParameters(MacroEvent& event);

/// Shows that a typed number is too large for the program.
void RefuseHugeNumber(UserInterface& ui, std::string_view text);

}  // namespace quiverion
