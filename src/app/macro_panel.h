#pragma once

#include <QObject>
#include <functional>
#include <string>
#include <vector>

#include "dialogs/macro_editing.h"
#include "dialogs/macro_history.h"
#include "dialogs/parameters/parameter_windows.h"
#include "macro/session.h"

class QListWidget;
class QListWidgetItem;

namespace Ui {
class frmMain;
}

namespace quiverion {

/// The macro of the main window: its list, the buttons beside it, and the steps that can be undone.
class MacroPanel : public QObject {
  Q_OBJECT

 public:
  /// `controls` are those of the main window; `directory` gives the one in which file dialogs begin. All must outlive
  /// the object.
  MacroPanel(Ui::frmMain& controls, Session& session, ParameterWindows& dialogs, MacroEditing& editing,
             std::function<std::string()> directory);

  /// Shows the macro of the session with the selected lines.
  void ShowMacro(const std::vector<int>& selected = {});

  /// The line that counts if one command is meant: the first selected one, -1 if there is none.
  int SelectedLine() const;

  /// Loads a macro file; the macro before can be had back. On failure, shows a message and changes nothing.
  void Load(const std::string& path);

  /// Shows the parameters of the selected command again, after they were changed elsewhere.
  void ShowParameters();

  MacroHistory& History() { return history_; }

 signals:
  /// The macro or the selected line has changed.
  void Changed(int line);

 protected:
  bool eventFilter(QObject* viewport, QEvent* event) override;

 private:
  void ConnectEdits();
  void ConnectKeys();
  void Guarded(const std::function<void()>& action);
  std::vector<int> SelectedLines() const;
  void ShowChosen();
  void ShowAround(int line);

  void Insert();
  void Edit();
  void Delete();
  void Move(int by);
  void Copy();
  void Paste();

  Ui::frmMain& ui_;
  Session& session_;
  ParameterWindows& dialogs_;
  MacroEditing& editing_;
  std::function<std::string()> directory_;
  MacroHistory history_;
};

}  // namespace quiverion
