#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "dialogs/parameters/parameter_dialogs.h"
#include "dialogs/parameters/parameter_editing.h"
#include "macro/session.h"

/// The actions on the macro list, without the list itself. `selected` is the index of the selected line, -1 if there is
/// none; line k shows command k of the macro. Each leaves the macro unchanged if the user cancels.
namespace quiverion {

/// A command that is being edited and not yet part of the macro.
struct DraftCommand {
  std::size_t position = 0;
  bool replaces = false;  ///< the command at the position; otherwise it is to be inserted there
  MacroEvent event;
};

class MacroEditing {
 public:
  /// Both must outlive the object.
  MacroEditing(Session& session, ParameterDialogs& dialogs) : session_(session), dialogs_(dialogs) {}

  /// While a command is being edited, `show` is called with each version of it, and with none at the end.
  void ShowDrafts(std::function<void(const std::optional<DraftCommand>&)> show) { showDraft_ = std::move(show); }

  /// Inserts a command before the selected one, or at the end. File dialogs begin in `directory`. Returns the index of
  /// the new command, -1 if none was inserted.
  int Insert(int selected, const std::string& directory);

  /// Asks for new parameters of the selected command. Returns true if the macro changed.
  bool Edit(int selected, const std::string& directory);

  /// Deletes the selected commands, in any order. Returns true if the macro changed.
  bool Delete(std::vector<int> selected);

  /// Moves the selected commands by -1 (up) or 1 (down), each past the one that is not selected. Returns their new
  /// indices in ascending order, or `selected` if the first or the last one cannot move.
  std::vector<int> Move(std::vector<int> selected, int by);

 private:
  EditOutcome AskAbout(MacroEvent& event, std::size_t position, bool isNew, const std::string& directory);
  bool IsCommand(int selected) const { return selected >= 0 && selected < static_cast<int>(session_.macro.size()); }

  Session& session_;
  ParameterDialogs& dialogs_;
  std::function<void(const std::optional<DraftCommand>&)> showDraft_;
};

}  // namespace quiverion
