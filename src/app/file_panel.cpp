#include "app/file_panel.h"

#include <QCheckBox>
#include <QDesktopServices>
#include <QShortcut>
#include <QUrl>
#include <algorithm>

#include "app/frmOpenDirectory.h"
#include "app/mouse_rules.h"
#include "app/navigation.h"
#include "dialogs/widgets/guarded.h"
#include "dialogs/widgets/qt_text.h"
#include "dialogs/widgets/run_modal.h"
#include "macro/result_names.h"
#include "messages/failure.h"
#include "platform/files/paths.h"
#include "ui_frmMain.h"

namespace quiverion {

FilePanel::FilePanel(QWidget& window, Ui::frmMain& controls, const Machine& machine, const MacroEventList& macro,
                     ParameterWindows& dialogs, UserInterface& messages)
    : window_(window),
      ui_(controls),
      files_(machine.files),
      listDrives_(machine.listDrives),
      macro_(macro),
      dialogs_(dialogs),
      messages_(messages),
      hideResults_(new QCheckBox(ui_.StatusBar)) {
  ConnectControls();
  ReadDrives();
  OpenDirectory(NearestDirectory(files_, machine.startDirectory, drives_));
}

void FilePanel::Guarded(std::string_view topic, const std::function<void()>& action) {
  dialogs_.SetTopic(topic);
  quiverion::Guarded(messages_, action);
}

void FilePanel::ConnectControls() {
  ui_.Directory->Use(files_);
  ui_.Files->Use(files_);
  connect(ui_.Directory, &DirectoryList::Chosen, this,
          [this](const QByteArray& path) { OpenDirectory(path.toStdString()); });
  for (QAbstractItemView* const list : std::initializer_list<QAbstractItemView*>{ui_.Directory, ui_.Files}) {
    new RightButton(*list, [this] { ReadLists(); });
  }
  connect(ui_.Files, &QListView::doubleClicked, this,
          [this](const QModelIndex&) { emit FieldWanted(ui_.Files->CurrentName()); });
  ui_.Drive->installEventFilter(new NoWheel(ui_.Drive));
  connect(ui_.Drive, &QComboBox::activated, this, &FilePanel::ChangeDrive);
  const auto onKeys = [this](const QKeySequence& keys, auto action) {
    connect(new QShortcut(keys, &window_), &QShortcut::activated, this, action);
  };
  onKeys(Qt::CTRL | Qt::Key_A, [this] {
    ui_.Files->setFocus();
    ui_.Files->selectAll();
  });
  onKeys(Qt::Key_F5, [this] {
    ReadDrives();
    ReadLists();
  });
  hideResults_->setObjectName(QStringLiteral("chkHideResults"));
  ShowHiddenCount();
  hideResults_->setToolTip(QStringLiteral("Blendet Dateien aus, die das Makro aus anderen Dateien der Liste erzeugt"));
  ui_.StatusBar->addPermanentWidget(hideResults_);
  connect(hideResults_, &QCheckBox::toggled, this, &FilePanel::HideResults);
  connect(ui_.mnuOpenDirectory, &QAction::triggered, this, &FilePanel::AskDirectory);
  connect(ui_.mnuOpenFolder, &QAction::triggered, this, &FilePanel::OpenFolder);
  connect(ui_.Files->selectionModel(), &QItemSelectionModel::selectionChanged, this, &FilePanel::Changed);
  connect(ui_.Files->model(), &QAbstractItemModel::modelReset, this, &FilePanel::Changed);
}

void FilePanel::MacroChanged() {
  if (hideResults_->isChecked()) ui_.Files->UpdateHidden();
}

ForecastInput FilePanel::WhatARunWouldTake() {
  ShowHiddenCount();
  const FileList& files = *ui_.Files;
  return {{WithSeparator(ui_.Directory->Path()), files.SelectedNames(), macro_}, files.Names().size()};
}

void FilePanel::ReadDrives() {
  drives_ = listDrives_();
  ui_.Drive->clear();
  for (const std::string& drive : drives_) ui_.Drive->addItem(ToQt(drive));
  ShowDriveOfDirectory();
}

void FilePanel::ShowDriveOfDirectory() {
  const std::string& directory = ui_.Directory->Path();
  const auto drive = std::ranges::find(drives_, DriveOf(drives_, directory));
  if (drive == drives_.end() && !directory.empty()) {  // a directory of a server has no drive
    ui_.Drive->setPlaceholderText(ToQt(DirectoryLines(directory, {}).front().name));
  }
  ui_.Drive->setCurrentIndex(drive == drives_.end() ? -1 : static_cast<int>(drive - drives_.begin()));
}

void FilePanel::ChangeDrive(int index) {
  const auto failure = Attempt([&] {
    const std::string& drive = drives_.at(static_cast<std::size_t>(index));
    if (drive != DriveOf(drives_, ui_.Directory->Path())) ShowDirectory(drive);  // else the same one was chosen again
  });
  if (!failure) return;
  messages_.Ask({.title = "Fehler", .text = "Laufwerk nicht bereit!"});
  ShowDriveOfDirectory();
}

void FilePanel::ShowDirectory(const std::string& path) {
  ui_.Directory->SetPath(path);
  ui_.Files->ShowDirectory(path);
  ShowDriveOfDirectory();
}

bool FilePanel::OpenDirectory(const std::string& path) {
  const auto failure = Attempt([&] { ShowDirectory(path); });
  if (failure) {
    messages_.Ask(
        {.title = "Verzeichnisauswahl",
         .text = "Das Verzeichnis '" + path + "' kann nicht gelesen werden!\r\n" + ErrorText(failure->error)});
  }
  return !failure;
}

void FilePanel::ReadLists() {
  const std::string path = ui_.Directory->Path();
  if (OpenDirectory(path)) return;
  ReadDrives();  // its drive may be gone, too
  OpenDirectory(NearestDirectory(files_, path, drives_));
}

void FilePanel::HideResults(bool hide) {
  ui_.Files->HideNames(!hide ? nullptr : std::function([this](const std::vector<std::string>& names) {
    return ResultsAmong(names, macro_);
  }));
  emit Changed();
}

void FilePanel::ShowHiddenCount() {
  const std::size_t count = ui_.Files->HiddenCount();
  const QString text = QStringLiteral("Ohne Ergebnisse");
  hideResults_->setText(count == 0 ? text : text + QString(" (%1)").arg(count));
}

void FilePanel::SelectFiles(const std::vector<std::string>& names) {
  if (ui_.Files->HidesOneOf(names)) hideResults_->setChecked(false);
  ui_.Files->SelectNames(names);
}

void FilePanel::AskDirectory() {
  Guarded("mnuOpenDirectory", [this] {
    frmOpenDirectory window(ui_.Directory->Path(), &window_);
    if (RunModal(window) != QDialog::Accepted) return;
    const std::string path = window.Path();
    if (path.empty()) return;
    const bool isFile = !files_.IsDirectory(path) && FileExists(files_, path);
    if (OpenDirectory(isFile ? ParentDirectory(path) : path) && isFile) SelectFiles({std::string(FileNameOf(path))});
    ui_.Files->setFocus();
  });
}

void FilePanel::OpenFolder() {
  Guarded("mnuOpenFolder", [this] {
    const std::string& path = ui_.Directory->Path();
    if (QDesktopServices::openUrl(QUrl::fromLocalFile(PathToQt(path)))) return;
    messages_.Ask({.title = "Ordner im Dateimanager öffnen",
                   .text = "Das Verzeichnis '" + path + "' lässt sich in keinem Dateimanager öffnen!"});
  });
}

}  // namespace quiverion
