#pragma once

#include <QDialog>
#include <optional>

#include "dialogs/widgets/filtered_line_edit.h"
#include "macro/command_catalogue.h"
#include "messages/user_interface.h"

namespace quiverion {

/// A window that edits the parameters of one command. Its close box and Escape are Cancel.
class ParameterWindow : public QDialog {
 public:
  /// `messages` must outlive the window.
  explicit ParameterWindow(UserInterface& messages, QWidget* parent = nullptr) : QDialog(parent), messages_(messages) {}

  /// Shows the values of `event`, which are all there.
  virtual void Load(const MacroEvent& event) = 0;

  /// Puts what the window shows into `event`.
  virtual void Store(MacroEvent& event) const = 0;

 protected:
  /// The number of a text box; none where it is too large for the program, which is said.
  std::optional<double> NumberOf(FilteredLineEdit& box);

  UserInterface& messages_;
};

}  // namespace quiverion
