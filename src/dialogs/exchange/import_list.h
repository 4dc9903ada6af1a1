#pragma once

#include <QAbstractTableModel>
#include <QBrush>
#include <set>
#include <string>
#include <vector>

#include "exchange/foreign_field.h"

namespace quiverion {

/// What was found in a file, or why it cannot be imported.
struct ImportFinding {
  exchange::ImportReport report;
  std::string problem;  // German; empty: the report is complete
};

enum class ImportState {
  unknown,   // the file is still to be read
  unread,    // nobody reads it
  ready,     // it can be imported
  refused,   // it cannot be read
  imported,  // its fields have been written
  failed,    // they have not
};

/// A file of another program, what was found in it, and what has become of it.
struct ImportItem {
  std::string path;
  exchange::ImportOptions options{};
  ImportState state = ImportState::unknown;
  std::uint64_t request = 0;  // of the last reading: the answer to an earlier one does not count
  ImportFinding finding{};
  std::string conflict{};         // German: another file has the same result
  std::size_t existingFiles = 0;  // results that would be replaced
};

/// The table of the files to import: guesses, results, problems.
class ImportList : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum Column { name, result, format, grid, units, yAxis, valid, statuses, columns };

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  const std::vector<ImportItem>& Items() const { return items_; }
  const ImportItem& ItemAt(int row) const { return items_[static_cast<std::size_t>(row)]; }

  /// Adds the files that are not in the list yet, sorted by name. Returns their rows.
  std::vector<int> Add(const std::vector<std::string>& paths);
  void Remove(std::vector<int> rows);

  /// The file is to be read with these options; what was found before is forgotten. `request` must be new.
  void Expect(int row, std::uint64_t request, const exchange::ImportOptions& options);

  /// The row of an answer; -1 if it is not wanted any more. Quick if answers come in the order of the rows.
  int RowOf(std::uint64_t request);

  /// No more answers come.
  void Settle();

  void ShowFinding(int row, ImportFinding finding);
  void ShowResult(int row, const std::string& problem);  // empty: imported

  /// Finds out which results exist in a directory (`existing`: keys of its file names), and which ones two files would
  /// have in common.
  void CompareResults(const std::set<std::string>& existing);

  /// Rows that can be imported.
  std::vector<int> ReadyRows() const;

  void SetProblemColour(const QColor& colour) { problemBrush_ = colour; }

 private:
  void RowChanged(int row);

  std::vector<ImportItem> items_;
  std::size_t lastAnswer_ = 0;  // its row
  QBrush problemBrush_;
};

/// The names of the files that an import of the item writes, without directory.
std::vector<std::string> ResultNamesOf(const ImportItem& item);

}  // namespace quiverion
