#pragma once

#include <memory>

#include "dialogs/parameters/parameter_window.h"

namespace Ui {
class frmMirrorOptions;
}

namespace quiverion {

/// Which coordinates are mirrored.
class frmMirrorOptions : public ParameterWindow {
  Q_OBJECT

 public:
  explicit frmMirrorOptions(UserInterface& messages, QWidget* parent = nullptr);
  ~frmMirrorOptions() override;

 private:
  std::unique_ptr<Ui::frmMirrorOptions> ui_;
};

}  // namespace quiverion
