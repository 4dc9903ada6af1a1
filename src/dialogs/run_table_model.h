#pragma once

#include <QAbstractTableModel>
#include <QBrush>
#include <vector>

#include "macro/run_table.h"

namespace quiverion {

/// The rows of a run's table, sorted and filtered. Nothing is copied but their order, so that a long series opens at
/// once.
class RunTableModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  /// The rows must outlive the model.
  RunTableModel(const std::vector<FileRow>& rows, char decimalSeparator, QObject* parent = nullptr);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  /// By the values of a column; rows without a value first. Equal rows stay in the order of the run, as all do for
  /// column -1.
  void sort(int column, Qt::SortOrder order) override;

  void ShowOnlyErrors(bool only);

  /// The colour of results that are not good.
  void SetErrorColour(const QColor& colour) { errorBrush_ = colour; }

  const FileRow& RowAt(int row) const { return rows_[order_[static_cast<std::size_t>(row)]]; }

 private:
  void Arrange();

  const std::vector<FileRow>& rows_;
  char decimalSeparator_;
  std::vector<std::uint32_t> order_;  // the shown rows
  int sortColumn_ = -1;
  Qt::SortOrder sortOrder_ = Qt::AscendingOrder;
  bool onlyErrors_ = false;
  QBrush errorBrush_;
};

}  // namespace quiverion
