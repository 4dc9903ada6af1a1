#pragma once

#include <QAbstractTableModel>
#include <QPalette>
#include <memory>
#include <optional>
#include <vector>

#include "macro/run_plan.h"

namespace quiverion {

/// A plan and what it was made from.
struct PlannedRun {
  RunPlan plan;
  MacroEventList macro;
  std::vector<PlanFinding> findings;
  std::size_t listed = 0;  ///< files of the list from which those of the plan were selected
};

/// The steps of a plan, in the order of the run. Texts are made when they are shown, because a long series has very
/// many.
class RunPlanModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum Column { input, action, path, command, note, kColumnCount };

  /// The forecast must outlive the model.
  RunPlanModel(const PlannedRun& forecast, const QPalette& palette, QObject* parent = nullptr);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  /// Shows only steps of this kind; all, and inputs that are missing, if there is none.
  void ShowOnly(std::optional<FileUse> use);

  /// A cell; the path of a result is relative to the directory of the inputs.
  std::string Text(int row, int column) const;

 private:
  const PlannedStep* StepOf(int row) const;
  const std::string& InputOf(int row) const;
  Severity SeverityOf(int row) const;

  const PlannedRun& forecast_;
  QPalette palette_;
  std::vector<std::int32_t> rows_;  // indices of steps, and missing inputs as -1 - index
};

}  // namespace quiverion
