#pragma once

#include <QDialog>
#include <array>
#include <memory>
#include <string>

#include "dialogs/log_text.h"
#include "messages/user_interface.h"
#include "platform/files/file_system.h"

class QPrinter;

namespace Ui {
class frmShowLogFile;
}

namespace quiverion {

using LogColours = std::array<QRgb, 3>;  // in the order of LogColour

/// The log of the last run: to read, to print, to save as RTF.
class frmShowLogFile : public QDialog {
  Q_OBJECT

 public:
  /// Save writes the log to `path`. The references must outlive the window.
  frmShowLogFile(const LogText& log, std::string path, FileSystem& files, UserInterface& messages,
                 QWidget* parent = nullptr);
  ~frmShowLogFile() override;

  /// Prints the selected text, or the whole log if nothing is selected.
  void PrintTo(QPrinter& printer);

 protected:
  void changeEvent(QEvent* event) override;

 private:
  void ShowIn(const LogColours& colours);
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
