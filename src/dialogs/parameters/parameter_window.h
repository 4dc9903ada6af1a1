#pragma once

#include <QDialog>
#include <functional>
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

  /// What Store would make of `event`; as it is if a number is too large.
  MacroEvent Draft(const MacroEvent& event) const;

  /// Calls `changed` now and after every change of a control.
  void ReportChanges(const std::function<void()>& changed);

  /// Puts a text into the box of a parameter; nothing if there is none.
  void ShowText(std::string_view key, const std::string& text);

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
