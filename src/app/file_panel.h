#pragma once

#include <QObject>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "app/machine.h"
#include "app/run_forecast.h"
#include "dialogs/parameters/parameter_windows.h"

class QCheckBox;

namespace Ui {
class frmMain;
}

namespace quiverion {

/// The files of the main window: drives, directories, the files of the open one, and which of them are selected.
class FilePanel : public QObject {
  Q_OBJECT

 public:
  /// `controls` are those of the main window `window`, `macro` is that of the session. All must outlive the object.
  FilePanel(QWidget& window, Ui::frmMain& controls, const Machine& machine, const MacroEventList& macro,
            ParameterWindows& dialogs, UserInterface& messages);

  /// Opens a directory and lists its files. If it cannot be read, shows a message and changes nothing.
  bool OpenDirectory(const std::string& path);

  /// Reads directories and files again; opens the nearest directory above if theirs is gone.
  void ReadLists();

  /// Selects these files of the directory. If one of them is hidden as a result, all are shown.
  void SelectFiles(const std::vector<std::string>& names);

  /// The macro has changed, and with it which files are its results.
  void MacroChanged();

  /// What Start would take.
  ForecastInput WhatARunWouldTake();

 signals:
  /// The files of the list or the selected ones have changed.
  void Changed();

  /// A file of the list is to be shown.
  void FieldWanted(const std::string& name);

 private:
  void ConnectControls();
  void Guarded(std::string_view topic, const std::function<void()>& action);
  void ReadDrives();
  void ShowDirectory(const std::string& path);  // throws SystemError with nothing changed
  void ShowDriveOfDirectory();
  void ChangeDrive(int index);
  void HideResults(bool hide);
  void ShowHiddenCount();
  void AskDirectory();
  void OpenFolder();

  QWidget& window_;
  Ui::frmMain& ui_;
  FileSystem& files_;
  std::function<std::vector<std::string>()> listDrives_;
  const MacroEventList& macro_;
  ParameterWindows& dialogs_;
  UserInterface& messages_;
  QCheckBox* hideResults_;  // in the status bar, which owns it
  std::vector<std::string> drives_;
};

}  // namespace quiverion
