#pragma once

#include <QObject>
#include <functional>
#include <string>
#include <vector>

#include "app/machine.h"
#include "dialogs/log_text.h"
#include "macro/run_table.h"
#include "macro/session.h"

class QDialog;
class QWidget;

namespace quiverion {

/// The runs of the main window, and what is left of the last one: its table and its log. Both are kept until the next
/// run begins.
class LastRun : public QObject {
  Q_OBJECT

 public:
  /// All must outlive the object.
  LastRun(const Machine& machine, Session& session, RunLog& log) : machine_(machine), session_(session), log_(log) {}

  /// Checks and runs the macro of the session. False if the checks have refused it; the last run is then the one
  /// before.
  bool Start();

  /// Shows the log until it is closed.
  void ShowLog();

  /// Shows the table over `parent` until it is closed; a message if there was no run yet.
  void ShowTable(QWidget& parent);

 signals:
  /// A file of the run is to be shown in the viewer.
  void FieldWanted(const std::string& path);

  /// Files of the run are to be selected.
  void FilesChosen(const std::string& directory, const std::vector<std::string>& names);

 private:
  void ShowLogAt(const FileRow& row, QWidget& parent);
  void ShowTableOver(QWidget& parent, const std::function<void(QDialog& table, const FileRow& row)>& showLog);
  std::string LogPath() const { return directory_ + "Log.rtf"; }

  const Machine& machine_;
  Session& session_;
  RunLog& log_;
  std::string directory_;
  std::vector<FileRow> rows_;
  LogText logText_;
};

}  // namespace quiverion
