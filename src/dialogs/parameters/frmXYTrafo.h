#pragma once

#include <memory>

#include "dialogs/parameters/parameter_window.h"

namespace Ui {
class frmXYTrafo;
}

namespace quiverion {

/// Factors and shifts of a coordinate transformation.
class frmXYTrafo : public ParameterWindow {
  Q_OBJECT

 public:
  explicit frmXYTrafo(UserInterface& messages, QWidget* parent = nullptr);
  ~frmXYTrafo() override;

  void accept() override;

 private:
  std::unique_ptr<Ui::frmXYTrafo> ui_;
};

}  // namespace quiverion
