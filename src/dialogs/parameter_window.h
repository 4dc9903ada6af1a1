#pragma once

#include <QDialog>

#include "macro/command_catalogue.h"

namespace quiverion {

/// A window that edits the parameters of one command. Its close box and Escape are Cancel.
class ParameterWindow : public QDialog {
 public:
  explicit ParameterWindow(QWidget* parent = nullptr) : QDialog(parent) {}

  /// Shows the values of `event`, which are all there.
  virtual void Load(const MacroEvent& event) = 0;

  /// Puts what the window shows into `event`.
  virtual void Store(MacroEvent& event) const = 0;
};

}  // namespace quiverion
