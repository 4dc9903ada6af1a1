#pragma once

#include <string>
#include <string_view>

#include "dialogs/parameters/parameter_dialogs.h"
#include "field/context.h"

/// Asking for the parameters of a command, without any window: which dialog, its presets, and what an answer means.
namespace quiverion {

/// What the questions need: message boxes and files of the context, the dialogs, and the directory that the main window
/// shows.
struct EditingServices {
  Context& context;
  ParameterDialogs& dialogs;
  std::string directory;
};

enum class EditOutcome {
  cancelled,      // the event is unchanged
  stored,         // also for a new command without parameters
  removeCommand,  // what the user chose leaves nothing to do: the command goes
};

/// Asks for the parameters of the command `event`, a new one or one of the macro, and stores them in it.
EditOutcome AskParameters(EditingServices& services, MacroEvent& event, bool isNew);

/// Adds the parameters that `event` lacks, with the values a new command begins with.
void AddDefaultParameters(MacroEvent& event);

/// Shows that a typed number is too large for the program.
void RefuseHugeNumber(UserInterface& ui, std::string_view text);

}  // namespace quiverion
