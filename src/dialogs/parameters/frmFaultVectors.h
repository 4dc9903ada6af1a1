#pragma once

#include <memory>

#include "dialogs/parameters/fault_vector_rules.h"
#include "dialogs/parameters/parameter_window.h"

namespace Ui {
class frmFaultVectors;
}

namespace quiverion {

/// The criteria of the search for faulty vectors.
class frmFaultVectors : public ParameterWindow {
  Q_OBJECT

 public:
  explicit frmFaultVectors(UserInterface& messages, QWidget* parent = nullptr);
  ~frmFaultVectors() override;

  void Load(const MacroEvent& event) override;
  void Store(MacroEvent& event) const override;

  void accept() override;

 private:
  FaultVectorChoices Choices() const;
  void EnableControls();

  std::unique_ptr<Ui::frmFaultVectors> ui_;
};

}  // namespace quiverion
