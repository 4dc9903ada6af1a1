#include "dialogs/exchange/import_list.h"

#include <algorithm>
#include <map>

#include "dialogs/widgets/qt_text.h"
#include "exchange/formats.h"
#include "exchange/import_file.h"
#include "platform/files/paths.h"
#include "platform/process/environment.h"
#include "platform/text/text.h"

namespace quiverion {
namespace {

constexpr const char* kCaptions[] = {"Datei",     "Ergebnis", "Format", "Gitter",
                                     "Einheiten", "y-Achse",  "Gültig", "Status"};

bool HasReport(const ImportItem& item) {
  return item.state != ImportState::unknown && item.state != ImportState::unread && item.state != ImportState::refused;
}

std::string UnitsText(const exchange::ImportReport& report) {
  const auto one = [](const std::string& unit, bool assumed, const char* as) {
    if (!assumed) return unit;
    return (unit.empty() ? std::string("ohne Einheit") : "'" + unit + "'") + " (als " + as + ")";
  };
  return one(report.lengthUnit, report.lengthIsAssumed, "mm") + "; " +
         one(report.velocityUnit, report.velocityIsAssumed, "m/s");
}

std::string GridText(const exchange::ImportReport& report) {
  const std::string size = std::to_string(report.columnCount) + " x " + std::to_string(report.rowCount);
  return report.fieldCount > 1 ? std::to_string(report.fieldCount) + " Felder, " + size : size;
}

std::string ValidText(const exchange::ImportReport& report) {
  return std::to_string(report.validCount) + " von " + std::to_string(report.vectorCount);
}

// What an import has made of the file, or would make.
std::string ResultText(const ImportItem& item) {
  switch (item.state) {
    case ImportState::unknown:
      return "wird gelesen...";
    case ImportState::unread:
      return "nicht gelesen";
    case ImportState::refused:
    case ImportState::failed:
      return item.finding.problem;
    case ImportState::imported:
      return "importiert";
    case ImportState::ready:
      break;
  }
  if (!item.conflict.empty()) return item.conflict;
  const std::vector<std::string> names = ResultNamesOf(item);
  const std::string files = names.size() > 1 ? names.front() + " bis " + names.back() : names.front();
  if (item.existingFiles == 0) return "neu: " + files;
  if (names.size() == 1) return "ersetzt: " + files;
  return "ersetzt " + std::to_string(item.existingFiles) + " von " + std::to_string(names.size()) + ": " + files;
}

std::string CellText(const ImportItem& item, int column) {
  if (column == ImportList::name) return std::string(FileNameOf(item.path));
  if (column == ImportList::result) {
    std::string text = ResultText(item);
    ReplaceControls(text, "");
    return text;
  }
  if (!HasReport(item)) return {};
  const exchange::ImportReport& report = item.finding.report;
  switch (column) {
    case ImportList::format:
      return report.dialect;
    case ImportList::grid:
      return GridText(report);
    case ImportList::units:
      return UnitsText(report);
    case ImportList::yAxis:
      return std::string(report.yPointsDown ? "unten" : "oben") + (report.yIsAssumed ? " (angenommen)" : "");
    case ImportList::statuses:
      return report.statusRule;
    default:
      return ValidText(report);
  }
}

bool IsProblem(const ImportItem& item) {
  return item.state == ImportState::refused || item.state == ImportState::failed || !item.conflict.empty();
}

// Everything about a file. Names may look like markup.
QString ToolTipOf(const ImportItem& item, int column) {
  std::string text = CellText(item, column);
  if (column == ImportList::name) text = item.path;
  if (HasReport(item) && column != ImportList::name) {
    for (const std::string& warning : item.finding.report.warnings) text += "\n" + warning;
  }
  return "<p>" + ToQt(text).toHtmlEscaped().replace('\n', "<br>") + "</p>";
}

}  // namespace

std::vector<std::string> ResultNamesOf(const ImportItem& item) {
  std::vector<std::string> names;
  const std::size_t count = item.finding.report.fieldCount;
  for (std::size_t k = 1; k <= count; ++k) {
    names.emplace_back(FileNameOf(exchange::ImportedPath(item.path, ".", k, count)));
  }
  return names;
}

int ImportList::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(items_.size());
}

int ImportList::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : columns;
}

QVariant ImportList::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const ImportItem& item = ItemAt(index.row());
  switch (role) {
    case Qt::DisplayRole:
      return ToQt(CellText(item, index.column()));
    case Qt::ForegroundRole:
      if (index.column() == result && IsProblem(item)) return problemBrush_;
      return {};
    case Qt::ToolTipRole:
      return ToolTipOf(item, index.column());
    default:
      return {};
  }
}

QVariant ImportList::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal) return {};
  if (role == Qt::TextAlignmentRole) return QVariant(Qt::AlignLeft | Qt::AlignVCenter);
  return role == Qt::DisplayRole ? QVariant(kCaptions[section]) : QVariant();
}

std::vector<int> ImportList::Add(const std::vector<std::string>& paths) {
  std::set<std::string> known;
  for (const ImportItem& item : items_) known.insert(item.path);
  std::vector<std::string> added;
  for (const std::string& path : paths) {
    if (known.insert(path).second) added.push_back(path);
  }
  if (added.empty()) return {};
  std::ranges::stable_sort(added, [](const std::string& a, const std::string& b) {
    return FileNameLess(std::string(FileNameOf(a)), std::string(FileNameOf(b)));
  });
  const int first = rowCount();
  beginInsertRows({}, first, first + static_cast<int>(added.size()) - 1);
  for (std::string& path : added) items_.push_back({.path = std::move(path)});
  endInsertRows();
  std::vector<int> rows;
  for (int row = first; row < rowCount(); ++row) rows.push_back(row);
  return rows;
}

void ImportList::Remove(std::vector<int> rows) {
  std::ranges::sort(rows, std::greater());
  beginResetModel();
  for (const int row : rows) items_.erase(items_.begin() + row);
  endResetModel();
}

void ImportList::Expect(int row, std::uint64_t request, const exchange::ImportOptions& options) {
  ImportItem& item = items_[static_cast<std::size_t>(row)];
  item.options = options;
  item.request = request;
  item.state = ImportState::unknown;
  item.finding = {};
  item.conflict.clear();
  RowChanged(row);
}

int ImportList::RowOf(std::uint64_t request) {
  for (std::size_t k = 0; k < items_.size(); ++k) {
    const std::size_t row = (lastAnswer_ + k) % items_.size();
    if (items_[row].request != request) continue;
    lastAnswer_ = row;
    return static_cast<int>(row);
  }
  return -1;
}

void ImportList::Settle() {
  for (int row = 0; row < rowCount(); ++row) {
    if (ItemAt(row).state != ImportState::unknown) continue;
    items_[static_cast<std::size_t>(row)].state = ImportState::unread;
    RowChanged(row);
  }
}

void ImportList::ShowFinding(int row, ImportFinding finding) {
  ImportItem& item = items_[static_cast<std::size_t>(row)];
  item.finding = std::move(finding);
  item.state = item.finding.problem.empty() ? ImportState::ready : ImportState::refused;
  RowChanged(row);
}

void ImportList::ShowResult(int row, const std::string& problem) {
  ImportItem& item = items_[static_cast<std::size_t>(row)];
  item.finding.problem = problem;
  item.state = problem.empty() ? ImportState::imported : ImportState::failed;
  RowChanged(row);
}

void ImportList::CompareResults(const std::set<std::string>& existing) {
  std::map<std::string, std::string> makers;  // of each result
  for (ImportItem& item : items_) {
    item.conflict.clear();
    item.existingFiles = 0;
    if (!HasReport(item)) continue;
    for (const std::string& made : ResultNamesOf(item)) {
      const std::string key = FileNameKey(made);
      item.existingFiles += existing.contains(key) ? 1 : 0;
      const auto [maker, isNew] = makers.emplace(key, item.path);
      if (!isNew && item.state == ImportState::ready && item.conflict.empty()) {
        item.conflict = "ergibt dieselbe Datei wie '" + std::string(FileNameOf(maker->second)) + "'";
      }
    }
  }
  if (!items_.empty()) emit dataChanged(index(0, result), index(rowCount() - 1, result));
}

std::vector<int> ImportList::ReadyRows() const {
  std::vector<int> rows;
  for (int row = 0; row < rowCount(); ++row) {
    if (ItemAt(row).state == ImportState::ready && ItemAt(row).conflict.empty()) rows.push_back(row);
  }
  return rows;
}

void ImportList::RowChanged(int row) {
  emit dataChanged(index(row, 0), index(row, columns - 1));
}

}  // namespace quiverion
