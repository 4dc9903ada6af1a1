#include "dialogs/macro_editing.h"

#include <algorithm>
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
      return Delete({selected});
    case EditOutcome::stored:
      break;
  }
  session_.macro[static_cast<std::size_t>(selected)] = currentMacroEvent;
  return true;
}

bool MacroEditing::Delete(std::vector<int> selected) {
  std::erase_if(selected, [this](int line) { return !IsCommand(line); });
  std::ranges::sort(selected, std::ranges::greater());
  selected.erase(std::ranges::unique(selected).begin(), selected.end());
  for (const int line : selected) session_.macro.erase(session_.macro.begin() + line);
  return !selected.empty();
}

std::vector<int> MacroEditing::Move(std::vector<int> selected, int by) {
  std::ranges::sort(selected);
  const auto canMove = [&](int line) { return IsCommand(line) && IsCommand(line + by); };
  if (selected.empty() || !canMove(selected.front()) || !canMove(selected.back())) return selected;
  if (by > 0) std::ranges::reverse(selected);  // the one in front makes room first
  for (int& line : selected) {
    std::swap(session_.macro[static_cast<std::size_t>(line)], session_.macro[static_cast<std::size_t>(line + by)]);
    line += by;
  }
  std::ranges::sort(selected);
  return selected;
}

}  // namespace quiverion
