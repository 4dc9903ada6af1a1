#pragma once

#include <QObject>
#include <string>
#include <vector>

#include "app/machine.h"
#include "messages/user_interface.h"

class QWidget;

namespace quiverion {

inline constexpr const char* kImportTitle = "QuiverionSeries  -  Dateien importieren";
inline constexpr const char* kExportTitle = "QuiverionSeries  -  Felder exportieren";

/// The windows for files of other programs, over the main window.
class ExchangeWindows : public QObject {
  Q_OBJECT

 public:
  /// All must outlive the object.
  ExchangeWindows(const Machine& machine, UserInterface& messages) : machine_(machine), messages_(messages) {}

  /// Shows the import until it is closed, with files to begin with. Asks for some if there are none.
  void ShowImport(QWidget& parent, const std::string& directory, const std::vector<std::string>& paths = {});

  /// Shows the export until it is closed, with fields of a directory to begin with.
  void ShowExport(QWidget& parent, const std::string& directory, const std::vector<std::string>& names);

 signals:
  /// Fields have been imported and are to be selected.
  void FilesChosen(const std::string& directory, const std::vector<std::string>& names);

 private:
  const Machine& machine_;
  UserInterface& messages_;
};

/// Takes those of the files out of `paths` that other programs have written, by their content. Of many files with one
/// extension only some are looked at.
std::vector<std::string> TakeForeignFiles(FileSystem& files, std::vector<std::string>& paths);

}  // namespace quiverion
