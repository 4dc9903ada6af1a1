#pragma once

#include <QDialog>
#include <memory>

#include "dialogs/run_plan_model.h"

namespace Ui {
class frmRunPlan;
}

namespace quiverion {

/// What Start would do: the findings, and a line for each file that would be read besides the inputs, or written.
class frmRunPlan : public QDialog {
  Q_OBJECT

 public:
  explicit frmRunPlan(std::shared_ptr<const PlannedRun> forecast, QWidget* parent = nullptr);
  ~frmRunPlan() override;

 private:
  void ShowFindings();
  void Arrange();
  void Copy();

  std::shared_ptr<const PlannedRun> forecast_;
  RunPlanModel model_;
  std::unique_ptr<Ui::frmRunPlan> ui_;
};

}  // namespace quiverion
