#include "view/vector_table.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QTableView>
#include <algorithm>

#include "dialogs/widgets/qt_text.h"
#include "picture/quantities.h"
#include "picture/scales.h"

namespace quiverion {
namespace {

constexpr int kDigits = 7;
constexpr std::size_t kMostRows = 1000000;

QString Header(std::string_view name, std::string_view unit) {
  return unit.empty() ? ToQt(name) : ToQt(name) + " [" + ToQt(unit) + "]";
}

QString RowsAsText(const VectorTable& table, const std::vector<int>& rows) {
  QString text;
  for (int section = 0; section < VectorTable::kColumnCount; ++section) {
    text += (section > 0 ? "\t" : "") + table.headerData(section, Qt::Horizontal, Qt::DisplayRole).toString();
  }
  text += '\n';
  for (const int row : rows) {
    for (int section = 0; section < VectorTable::kColumnCount; ++section) {
      text += (section > 0 ? "\t" : "") + table.Text(row, section);
    }
    text += '\n';
  }
  return text;
}

}  // namespace

void VectorTable::ShowField(const VectorField* field) {
  beginResetModel();
  field_ = field;
  endResetModel();
}

int VectorTable::rowCount(const QModelIndex& parent) const {
  return parent.isValid() || field_ == nullptr ? 0 : static_cast<int>(field_->status.Values().size());
}

int VectorTable::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : kColumnCount;
}

QString VectorTable::Text(int tableRow, int tableColumn) const {
  const int i = tableRow % field_->columnCount + 1, j = tableRow / field_->columnCount + 1;
  const auto number = [](double value) { return ToQt(NumberText(value, kDigits)); };
  switch (tableColumn) {
    case column:
      return QString::number(i);
    case row:
      return QString::number(j);
    case x:
      return number(field_->posX[static_cast<std::size_t>(i - 1)]);
    case y:
      return number(field_->posY[static_cast<std::size_t>(j - 1)]);
    case u:
      return number(field_->velX(i, j));
    case v:
      return number(field_->velY(i, j));
    case speed:
      return number(SpeedOf(field_->velX(i, j), field_->velY(i, j)));
    default:
      return QString::number(field_->status(i, j));
  }
}

QVariant VectorTable::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || field_ == nullptr) return {};
  if (role == Qt::DisplayRole) return Text(index.row(), index.column());
  if (role == Qt::TextAlignmentRole) return QVariant(Qt::AlignRight | Qt::AlignVCenter);
  if (role == Qt::ToolTipRole && index.column() == status) {
    const std::int32_t value = field_->status.Values()[static_cast<std::size_t>(index.row())];
    return ToQt(NameOf(KindOf(value), OriginOf(*field_)));
  }
  return {};
}

QVariant VectorTable::headerData(int section, Qt::Orientation orientation, int role) const {
  if (role != Qt::DisplayRole) return {};
  if (orientation == Qt::Vertical) return section + 1;
  const ComponentTexts components =
      field_ == nullptr ? ComponentTexts{"", "u", "v", "m/s", "m/s"} : ComponentsOf(*field_);
  switch (section) {
    case column:
      return QStringLiteral("i");
    case row:
      return QStringLiteral("j");
    case x:
      return QStringLiteral("x [mm]");
    case y:
      return QStringLiteral("y [mm]");
    case u:
      return Header(components.u, components.uUnit);
    case v:
      return Header(components.v.empty() ? "–" : components.v, components.vUnit);
    case speed:
      return Header("Betrag", components.uUnit == components.vUnit ? components.uUnit : "");
    default:
      return QStringLiteral("Status");
  }
}

void ShowIn(QTableView& view, VectorTable& table) {
  view.setModel(&table);
  const QFontMetrics letters = view.fontMetrics();
  view.verticalHeader()->setDefaultSectionSize(letters.height() + 6);
  view.horizontalHeader()->setDefaultSectionSize(letters.horizontalAdvance("-0,1234567") + 24);
  for (const int column : {VectorTable::column, VectorTable::row, VectorTable::status}) {
    view.setColumnWidth(column, letters.horizontalAdvance("Status") + 24);
  }
}

void CopySelectedRows(const VectorTable& table, const QItemSelection& selection, UserInterface& messages) {
  std::vector<int> rows;
  for (const QItemSelectionRange& range : selection) {
    for (int row = range.top(); row <= range.bottom() && rows.size() <= kMostRows; ++row) rows.push_back(row);
  }
  if (rows.empty()) return;
  if (rows.size() > kMostRows) {
    messages.Ask({.title = "Zeilen kopieren", .text = "Es können höchstens 1000000 Zeilen auf einmal kopiert werden!"});
    return;
  }
  std::ranges::sort(rows);
  QGuiApplication::clipboard()->setText(RowsAsText(table, rows));
}

}  // namespace quiverion
