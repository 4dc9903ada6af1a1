#include "dialogs/macro_editing.h"

#include <utility>

namespace quiverion {
namespace {

bool HasParameters(const MacroEvent& event) {
  const CommandRow* const command = FindCommand(event.EventId());
  return command != nullptr && command->editor.kind != EditorKind::none;
}

}  // namespace

EditOutcome MacroEditing::AskAbout(MacroEvent& event, std::size_t position, bool isNew, const std::string& directory) {
  EditingServices services{session_.context, dialogs_, directory};
  if (showDraft_) {
    services.draft = [&](const MacroEvent& draft) { showDraft_(DraftCommand{position, !isNew, draft}); };
  }
  const auto outcome = AskParameters(services, event, isNew);
  if (showDraft_) showDraft_(std::nullopt);
  return outcome;
}

int MacroEditing::Insert(int selected, const std::string& directory) {
  const auto eventId = dialogs_.ChooseCommand();
  if (!eventId) return -1;
  MacroEvent currentMacroEvent(*eventId);
  MacroEventList& macro = session_.macro;
  const int position = IsCommand(selected) ? selected : static_cast<int>(macro.size());
  const EditOutcome outcome = AskAbout(currentMacroEvent, static_cast<std::size_t>(position), true, directory);
  if (outcome != EditOutcome::stored) return -1;
  macro.insert(macro.begin() + position, currentMacroEvent);
  return position;
}

bool MacroEditing::Edit(int selected, const std::string& directory) {
  if (!IsCommand(selected)) return false;
  MacroEvent& command = session_.macro[static_cast<std::size_t>(selected)];
  MacroEvent currentMacroEvent = command;
  if (!HasParameters(command)) {
    session_.context.ui.Ask({.title = "QuiverionSeries  -  Parameter bearbeiten",
                             .text = "Dieser Makro-Befehl hat keine Parameter, die bearbeitet werden könnten!",
                             .icon = MessageIcon::information});
    return false;
  }
  switch (AskAbout(currentMacroEvent, static_cast<std::size_t>(selected), false, directory)) {
    case EditOutcome::cancelled:
      return false;
    case EditOutcome::removeCommand:
      return Delete(selected);
    case EditOutcome::stored:
      break;
  }
  session_.macro[static_cast<std::size_t>(selected)] = currentMacroEvent;
  return true;
}

bool MacroEditing::Delete(int selected) {
  if (!IsCommand(selected)) return false;
  session_.macro.erase(session_.macro.begin() + selected);
  return true;
}

int MacroEditing::Move(int selected, int by) {
  const int target = selected + by;
  if (!IsCommand(selected) || !IsCommand(target)) return selected;
  std::swap(session_.macro[static_cast<std::size_t>(selected)], session_.macro[static_cast<std::size_t>(target)]);
  return target;
}

}  // namespace quiverion
