#include "dialogs/widgets/table_text.h"

namespace quiverion {

QString TableText(const QTableView& table) {
  const QAbstractItemModel& model = *table.model();
  const QItemSelectionModel& marked = *table.selectionModel();
  const int columns = model.columnCount();
  QString text;
  const auto append = [&](int column, const QVariant& cell) {
    text += cell.toString() + (column + 1 < columns ? u'\t' : u'\n');
  };
  for (int k = 0; k < columns; ++k) append(k, model.headerData(k, Qt::Horizontal));
  for (int row = 0; row < model.rowCount(); ++row) {
    if (marked.hasSelection() && !marked.isRowSelected(row)) continue;
    for (int k = 0; k < columns; ++k) append(k, model.index(row, k).data());
  }
  return text;
}

}  // namespace quiverion
