#pragma once

#include <QDialog>
#include <memory>
#include <string>

#include "dialogs/log_text.h"
#include "dialogs/widgets/log_colours.h"
#include "messages/user_interface.h"
#include "platform/files/file_system.h"

class QPrinter;
class QTextBlock;

namespace Ui {
class frmShowLogFile;
}

namespace quiverion {

/// The log of the last run: to read, to print, to save as RTF.
class frmShowLogFile : public QDialog {
  Q_OBJECT

 public:
  /// Save writes the log to `path`. The references must outlive the window.
  frmShowLogFile(const LogText& log, std::string path, FileSystem& files, UserInterface& messages,
                 QWidget* parent = nullptr);
  ~frmShowLogFile() override;

  /// Shows a line below the log: what it says of the run, and the keys.
  void ShowSummary(const std::string& summary);

  /// Scrolls to the place after so many bytes of the log and selects its line.
  void GoTo(std::size_t place);

  /// Prints the selected text, or the whole log if nothing is selected.
  void PrintTo(QPrinter& printer);

 signals:
  /// The table of the run is wanted.
  void TableWanted();

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void ShowIn(const LogColours& colours);
  void AddKeys();
  void GoToNextError();
  void SelectLine(const QTextBlock& line);
  void Print();
  void Save();

  const LogText& log_;
  std::string path_;
  FileSystem& files_;
  UserInterface& messages_;
  LogColours colours_ = {};  // none of them
  std::unique_ptr<Ui::frmShowLogFile> ui_;
};

}  // namespace quiverion
