#include "dialogs/exchange/export_list.h"

#include <algorithm>
#include <functional>
#include <set>

#include "dialogs/widgets/qt_text.h"
#include "platform/files/paths.h"
#include "platform/text/text.h"

namespace quiverion {

int ExportList::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(items_.size());
}

int ExportList::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : columns;
}

QVariant ExportList::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const ExportItem& item = items_[static_cast<std::size_t>(index.row())];
  const bool isName = index.column() == name;
  switch (role) {
    case Qt::DisplayRole:
      return ToQt(isName ? std::string(FileNameOf(item.path)) : item.result);
    case Qt::ForegroundRole:
      return !isName && item.isProblem ? QVariant(problemBrush_) : QVariant();
    case Qt::ToolTipRole:  // names may look like markup
      return "<p>" + ToQt(isName ? item.path : item.result).toHtmlEscaped() + "</p>";
    default:
      return {};
  }
}

QVariant ExportList::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal) return {};
  if (role == Qt::TextAlignmentRole) return QVariant(Qt::AlignLeft | Qt::AlignVCenter);
  return role == Qt::DisplayRole ? QVariant(section == name ? "Datei" : "Ergebnis") : QVariant();
}

void ExportList::Add(const std::vector<std::string>& paths) {
  std::set<std::string> known;
  for (const ExportItem& item : items_) known.insert(item.path);
  beginResetModel();
  for (const std::string& path : paths) {
    if (known.insert(path).second) items_.push_back({.path = path});
  }
  endResetModel();
}

void ExportList::Remove(std::vector<int> rows) {
  std::ranges::sort(rows, std::greater());
  beginResetModel();
  for (const int row : rows) items_.erase(items_.begin() + row);
  endResetModel();
}

void ExportList::ShowResult(std::size_t row, std::string text, bool isProblem) {
  ReplaceControls(text, "");
  items_[row].result = std::move(text);
  items_[row].isProblem = isProblem;
  const QModelIndex changed = index(static_cast<int>(row), result);
  emit dataChanged(changed, changed);
}

}  // namespace quiverion
