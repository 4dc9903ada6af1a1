#pragma once

#include <QAbstractTableModel>
#include <QBrush>
#include <string>
#include <vector>

namespace quiverion {

/// A field to export, and what has become of it.
struct ExportItem {
  std::string path;
  std::string result{};  // German: what would happen, then what did
  bool isProblem = false;
};

/// The table of the fields to export.
class ExportList : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum Column { name, result, columns };

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  const std::vector<ExportItem>& Items() const { return items_; }

  /// Adds the fields that are not in the list yet, in their order.
  void Add(const std::vector<std::string>& paths);
  void Remove(std::vector<int> rows);

  void ShowResult(std::size_t row, std::string result, bool isProblem);

  void SetProblemColour(const QColor& colour) { problemBrush_ = colour; }

 private:
  std::vector<ExportItem> items_;
  QBrush problemBrush_;
};

}  // namespace quiverion
