#pragma once

#include <QElapsedTimer>
#include <QMainWindow>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/exchange_windows.h"
#include "app/file_panel.h"
#include "app/last_run.h"
#include "app/machine.h"
#include "app/macro_panel.h"
#include "app/main_window.h"
#include "app/qt_user_interface.h"
#include "app/run_forecast.h"
#include "app/statistics_flow.h"
#include "app/tool_windows.h"
#include "dialogs/help/help.h"
#include "dialogs/macro_editing.h"
#include "dialogs/parameters/parameter_windows.h"
#include "macro/session.h"

namespace Ui {
class frmMain;
}

namespace quiverion {

/// The main window: the macro, the files of the series, Start. It owns the session. Everything runs in its event
/// handlers; a run or a computation processes further events when it yields.
class frmMain : public QMainWindow, public MainWindow {
  Q_OBJECT

 public:
  explicit frmMain(const Machine& machine, QWidget* parent = nullptr);
  ~frmMain() override;

  Session& TheSession() { return session_; }

  /// Opens dropped files: loads the first macro, shows the first collection, opens a directory with all its files
  /// selected, and selects vector fields in their directory; files of other programs lead to their import. If one of
  /// the files is missing, shows a message and opens nothing.
  void OpenPaths(const std::vector<std::string>& paths);

  /// Opens a directory and lists its files. If it cannot be read, shows a message and changes nothing.
  bool OpenDirectory(const std::string& path) { return files_.OpenDirectory(path); }

  /// Shows the macro of the session; `selected` is the selected line, -1 for none.
  void ShowMacro(int selected) { macro_.ShowMacro(selected < 0 ? std::vector<int>() : std::vector{selected}); }

  QWidget& Widget() override { return *this; }
  void ComputationStarted() override;
  void ShowComputation(std::int64_t done, std::int64_t total) override;
  void ComputationEnded() override;
  bool IsQuitting() const override { return quitting_; }

 protected:
  void closeEvent(QCloseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void ConnectMenus();

  // Runs the reaction to an event; shows whatever it throws in a message box. `topic` is the help topic of its dialogs.
  void Guarded(std::string_view topic, const std::function<void()>& action);

  void OpenMacro();
  void SaveMacro();

  std::optional<std::string> ChooseMacroFile(FileQuestion::Kind kind, const char* title);

  void Start();
  void RunStatistic(const StatisticTexts& texts);
  void EditCollection();
  void ShowCollection(const std::string& path);

  // During a statistic, refuses a second entry point with a message. True if it was refused.
  bool RefuseWhileBusy(std::string_view title);

  void ConnectTools();
  void ImportFiles(const std::vector<std::string>& paths);
  void ExportFields();

  // Shows a file of the list or, if there is no name, the first one of the directory.
  void ShowField(const std::string& name);

  void ShowForecast(const std::shared_ptr<const PlannedRun>& forecast);

  // Other files are listed or selected. The preview gets all if none is selected.
  void FilesChanged();
  std::vector<std::string> ChosenNames() const;
  void ShowFiles(const std::string& directory, const std::vector<std::string>& names);

  // The macro has changed, or another line of it was selected.
  void MacroChanged(int line);

  // Shows the hidden window at its old position; the window manager would choose a new one.
  void ShowAt(QPoint place);
  void WaitUntilPlaced();

  void Quit();

  Machine machine_;
  RunLog log_;
  QtUserInterface messages_{*this};
  Session session_;
  ParameterWindows dialogs_{*this, messages_};
  ExchangeWindows exchange_{machine_, messages_};
  LastRun lastRun_{machine_, session_, log_};
  MacroEditing editing_{session_, dialogs_};
  Help help_{machine_.helpFile, [this] { return dialogs_.Topic(); }, *this, messages_};
  std::unique_ptr<Ui::frmMain> ui_;
  MacroPanel macro_;
  ToolWindows tools_;
  FilePanel files_;
  RunForecast forecast_;
  std::string computation_;  // what the running statistic computes, for the status bar
  QElapsedTimer computing_;
  bool quitting_ = false;
};

}  // namespace quiverion
