#pragma once

#include <QPointer>
#include <QTimer>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/machine.h"
#include "dialogs/help/help.h"
#include "dialogs/macro_editing.h"
#include "dialogs/macro_history.h"
#include "dialogs/parameters/parameter_windows.h"
#include "macro/session.h"
#include "view/frmView.h"
#include "view/preview/frmPreview.h"

namespace quiverion {

/// The windows of the menu "Werkzeuge" that stay open beside the main window, and what they need to know of it.
class ToolWindows : public QObject {
  Q_OBJECT

 public:
  /// All must outlive the object.
  ToolWindows(const Machine& machine, Session& session, ParameterWindows& dialogs, MacroEditing& editing,
              MacroHistory& history, Help& help);
  ~ToolWindows() override;

  /// Opens the viewer, or the one that is open, with a field or a directory.
  void ShowField(const std::string& path);

  /// Opens the preview, or brings it to the front.
  void ShowPreview();

  bool HasPreview() const { return preview_ != nullptr; }

  /// The macro has changed, or another line of it was chosen; -1 for none.
  void MacroChanged(int line);

  /// Other files would be taken by a run.
  void FilesChanged(const std::string& directory, std::vector<std::string> names);

  /// Nothing computes and no file is open until Reload.
  void StopPreview();

  /// A run or a statistic has ended: files and buffer may be others.
  void Reload();

 signals:
  /// The preview has changed a parameter of the macro.
  void MacroEdited();

 private:
  void MoveLimit(int command, const QString& key, const QString& text);

  const Machine& machine_;
  Session& session_;
  ParameterWindows& dialogs_;
  MacroHistory& history_;
  Help& help_;
  QPointer<frmView> viewer_;             // deletes itself when it is closed
  std::unique_ptr<frmPreview> preview_;  // hidden when it is closed
  int line_ = -1;
  std::optional<std::size_t> draftPosition_;  // of the command that is being edited
  bool isStopped_ = false;
};

}  // namespace quiverion
