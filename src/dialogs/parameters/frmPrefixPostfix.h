#pragma once

#include <memory>

#include "dialogs/parameters/parameter_window.h"

namespace Ui {
class frmPrefixPostfix;
}

namespace quiverion {

/// Prefix and postfix of an output file's name.
class frmPrefixPostfix : public ParameterWindow {
  Q_OBJECT

 public:
  explicit frmPrefixPostfix(UserInterface& messages, QWidget* parent = nullptr);
  ~frmPrefixPostfix() override;

 protected:
  void changeEvent(QEvent* event) override;

 private:
  // Red while the new file would have the name of the original.
  void ColourWarning();

  std::unique_ptr<Ui::frmPrefixPostfix> ui_;
};

}  // namespace quiverion
