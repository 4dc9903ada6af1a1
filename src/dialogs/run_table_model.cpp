#include "dialogs/run_table_model.h"

#include <algorithm>
#include <compare>

#include "dialogs/widgets/qt_text.h"
#include "platform/text/text.h"

namespace quiverion {
namespace {

enum Column { name, result, errors, message, before, after, rejected, filled, vortices, seconds };

bool IsText(int column) {
  return column == name || column == result || column == message;
}

// Whether `a` comes before `b` in the order of a column.
bool Precedes(const FileRow& a, const FileRow& b, int column) {
  switch (column) {
    case name:
      return FileNameLess(a.name, b.name);
    case result:
      return a.result < b.result;
    case errors:
      return a.errors < b.errors;
    case message:
      return a.message < b.message;
    case before:
      return a.validBefore < b.validBefore;
    case after:
      return a.validAfter < b.validAfter;
    case rejected:
      return a.rejected < b.rejected;
    case filled:
      return a.filled < b.filled;
    case vortices:
      return a.vortices < b.vortices;
    default:
      return a.seconds < b.seconds;
  }
}

}  // namespace

RunTableModel::RunTableModel(const std::vector<FileRow>& rows, char decimalSeparator, QObject* parent)
    : QAbstractTableModel(parent), rows_(rows), decimalSeparator_(decimalSeparator) {
  Arrange();
}

int RunTableModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(order_.size());
}

int RunTableModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(kTableColumns);
}

QVariant RunTableModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const FileRow& row = RowAt(index.row());
  const int column = index.column();
  switch (role) {
    case Qt::DisplayRole:
      return ToQt(TableCell(row, static_cast<std::size_t>(column), decimalSeparator_));
    case Qt::TextAlignmentRole:
      return QVariant((IsText(column) ? Qt::AlignLeft : Qt::AlignRight) | Qt::AlignVCenter);
    case Qt::ForegroundRole:
      if (column == result && row.result != FileResult::done) return errorBrush_;
      return {};
    case Qt::ToolTipRole:  // names may look like markup
      if (column != name && column != message) return {};
      return ToQt(column == name ? row.name : row.message).toHtmlEscaped().prepend("<p>").append("</p>");
    default:
      return {};
  }
}

QVariant RunTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal) return {};
  if (role == Qt::TextAlignmentRole)
    return QVariant((IsText(section) ? Qt::AlignLeft : Qt::AlignRight) | Qt::AlignVCenter);
  if (role != Qt::DisplayRole) return {};
  return ToQt(TableCaptions()[static_cast<std::size_t>(section)]);
}

void RunTableModel::sort(int column, Qt::SortOrder order) {
  sortColumn_ = column;
  sortOrder_ = order;
  beginResetModel();
  Arrange();
  endResetModel();
}

void RunTableModel::ShowOnlyErrors(bool only) {
  onlyErrors_ = only;
  beginResetModel();
  Arrange();
  endResetModel();
}

void RunTableModel::Arrange() {
  order_.clear();
  for (std::uint32_t k = 0; k < rows_.size(); ++k) {
    if (!onlyErrors_ || rows_[k].HasErrors()) order_.push_back(k);
  }
  if (sortColumn_ < 0) return;
  std::ranges::stable_sort(order_, [this](std::uint32_t a, std::uint32_t b) {
    const bool up = sortOrder_ == Qt::AscendingOrder;
    return Precedes(rows_[up ? a : b], rows_[up ? b : a], sortColumn_);
  });
}

}  // namespace quiverion
