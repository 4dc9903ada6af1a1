#pragma once

#include <QAbstractTableModel>
#include <memory>
#include <vector>

#include "preview/macro_preview.h"

namespace quiverion {

/// The steps of a macro and what each did: a row per step, the load first.
class StepTable : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum Column { title, rejected, filled, changed, valid, greatest, vortices, files, kColumnCount };

  using QAbstractTableModel::QAbstractTableModel;

  /// `titles` are those of all steps; of the ones after `steps` nothing is known yet.
  void Show(std::vector<std::string> titles, std::shared_ptr<const std::vector<StepReport>> steps);

  /// Of a step that is done; null otherwise.
  const StepReport* Report(int row) const;

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

 private:
  QString Text(const StepReport& report, int column) const;

  std::vector<std::string> titles_;
  std::shared_ptr<const std::vector<StepReport>> steps_;
};

/// Everything about a step as rich text: what it did, the files it would write (those it would replace stand out), its
/// log.
QString StepDetails(const StepReport& report);

}  // namespace quiverion
