#pragma once

#include <QAbstractTableModel>
#include <QItemSelection>

#include "field/vector_field.h"
#include "messages/user_interface.h"
#include "picture/statuses.h"

class QTableView;

namespace quiverion {

/// All vectors of a field, row by row of its grid. Nothing is stored, so that a field of 16 million vectors scrolls
/// like a small one.
class VectorTable : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum Column { column, row, x, y, u, v, speed, status, kColumnCount };

  using QAbstractTableModel::QAbstractTableModel;

  /// The field must outlive the model, or the next call; null for none.
  void ShowField(const VectorField* field);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  /// The text of a cell, with a decimal comma.
  QString Text(int tableRow, int tableColumn) const;

 private:
  const VectorField* field_ = nullptr;
};

/// Shows the table in a view, with rows and columns as large as its letters need.
void ShowIn(QTableView& view, VectorTable& table);

/// Copies the selected rows as text: columns separated by tabs, a line with the names first. Refuses more than a
/// million.
void CopySelectedRows(const VectorTable& table, const QItemSelection& selection, UserInterface& messages);

}  // namespace quiverion
