#pragma once

#include <memory>

#include "dialogs/parameters/parameter_window.h"

namespace Ui {
class frmEditVector;
}

namespace quiverion {

/// The constant vector of a command.
class frmEditVector : public ParameterWindow {
  Q_OBJECT

 public:
  explicit frmEditVector(UserInterface& messages, const QString& title, QWidget* parent = nullptr);
  ~frmEditVector() override;

  void accept() override;

 private:
  std::unique_ptr<Ui::frmEditVector> ui_;
};

}  // namespace quiverion
