#pragma once

#include <QDialog>
#include <optional>
#include <span>

#include "dialogs/widgets/filtered_line_edit.h"
#include "macro/command_catalogue.h"
#include "messages/user_interface.h"

namespace quiverion {

/// A window that edits the parameters of one command. Its close box and Escape are Cancel.
///
/// Controls are bound to parameters by their names: the control of "TxtFakX" is txtFakX, that of "Prefix" txtPrefix,
/// that of "LogicalOr" optLogicalOr. The option button of a flag has one counterpart in its frame.
class ParameterWindow : public QDialog {
 public:
  /// `messages` must outlive the window.
  explicit ParameterWindow(UserInterface& messages, QWidget* parent = nullptr) : QDialog(parent), messages_(messages) {}

  /// Shows the values of `event`, which must be complete. A macro file may hold numbers out of bounds: the nearest is
  /// shown.
  virtual void Load(const MacroEvent& event);

  /// Puts what the window shows of the loaded command into `event`.
  virtual void Store(MacroEvent& event) const;

 protected:
  /// An integer of the command that is loaded, within its bounds.
  int ChoiceOf(const MacroEvent& event, std::string_view key) const;

  /// The number of a text box; none if it is too large for the program, which is said.
  std::optional<double> NumberOf(FilteredLineEdit& box);

  UserInterface& messages_;

 private:
  std::span<const Parameter> parameters_;  // of the command that was loaded
};

}  // namespace quiverion
