#pragma once

#include <QDialog>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "dialogs/run_table_model.h"
#include "messages/user_interface.h"
#include "platform/files/file_system.h"

namespace Ui {
class frmRunTable;
}

namespace quiverion {

/// What the table shows and what it leads to.
struct RunTableServices {
  const std::vector<FileRow>& rows;  // of the run; must outlive the window
  std::string directory;             // of the files, ends in a separator
  char decimalSeparator;
  FileSystem& files;
  UserInterface& messages;
  std::function<void(const FileRow&)> showField;                // in the viewer
  std::function<void(const FileRow&)> showLog;                  // at the error of the row
  std::function<void(const std::vector<std::string>&)> select;  // in the file list of the main window
};

/// What happened to each file of the last run: to sort, to filter, to copy and to save.
class frmRunTable : public QDialog {
  Q_OBJECT

 public:
  explicit frmRunTable(RunTableServices services, QWidget* parent = nullptr);
  ~frmRunTable() override;

 protected:
  void changeEvent(QEvent* event) override;

 private:
  // The marked rows in the order they are shown, all shown ones if none is marked.
  std::vector<int> ChosenRows() const;

  void UseErrorColour();
  void Open(const QModelIndex& index);
  void Copy();
  void Save();
  void Select();

  RunTableServices services_;
  RunTableModel model_;
  std::unique_ptr<Ui::frmRunTable> ui_;
};

}  // namespace quiverion
