#include "app/frmMain.h"

#include <QApplication>
#include <QCloseEvent>
#include <QWindow>
#include <algorithm>

#include "app/navigation.h"
#include "dialogs/frmRunPlan.h"
#include "dialogs/frmShowCollection.h"
#include "dialogs/parameters/file_choices.h"
#include "dialogs/widgets/dropped_files.h"
#include "dialogs/widgets/guarded.h"
#include "dialogs/widgets/icons.h"
#include "dialogs/widgets/qt_text.h"
#include "dialogs/widgets/run_modal.h"
#include "dialogs/widgets/time_text.h"
#include "macro/macro_file.h"
#include "messages/failure.h"
#include "platform/files/paths.h"
#include "platform/text/text.h"
#include "ui_frmMain.h"

namespace quiverion {
namespace {

constexpr const char* kCollectionTitle = "QuiverionSeries - Inhalt der Kollektion einsehen und bearbeiten";
constexpr qint64 kPlacementTime = 300;  // ms to wait for the window manager to show the window again

std::unique_ptr<Ui::frmMain> MakeForm(QMainWindow& window) {
  UseIcons();
  auto form = std::make_unique<Ui::frmMain>();
  form->setupUi(&window);
  return form;
}

}  // namespace

frmMain::frmMain(const Machine& machine, QWidget* parent)
    : QMainWindow(parent),
      machine_(machine),
      session_(machine.files, messages_, log_, machine.clock),
      ui_(MakeForm(*this)),
      macro_(*ui_, session_, dialogs_, editing_, [this] { return ui_->Directory->Path(); }),
      tools_(machine_, session_, dialogs_, editing_, macro_.History(), help_),
      files_(*this, *ui_, machine_, session_.macro, dialogs_, messages_),
      forecast_(machine_.files, *ui_->StatusBar, [this] { return files_.WhatARunWouldTake(); }) {
  session_.context.decimalSeparator = machine.decimalSeparator;
  ConnectMenus();
  ConnectTools();
  connect(ui_->cmdOk, &QPushButton::clicked, this, &frmMain::Start);
  connect(ui_->cmdCancel, &QPushButton::clicked, this, &frmMain::Quit);
  FilesChanged();
  ui_->lstMacroList->setFocus();
}

frmMain::~frmMain() = default;

void frmMain::Guarded(std::string_view topic, const std::function<void()>& action) {
  dialogs_.SetTopic(topic);
  quiverion::Guarded(messages_, action);
}

void frmMain::ConnectMenus() {
  connect(ui_->mnuOpenMacroList, &QAction::triggered, this, &frmMain::OpenMacro);
  connect(ui_->mnuSaveMacroList, &QAction::triggered, this, &frmMain::SaveMacro);
  for (const StatisticTexts& texts : AllStatisticTexts()) {
    auto* const item = findChild<QAction*>(ToQt(texts.item));
    connect(item, &QAction::triggered, this, [this, &texts] { RunStatistic(texts); });
  }
  connect(ui_->mnuEditCollection, &QAction::triggered, this, &frmMain::EditCollection);
  connect(ui_->mnuShowHelp, &QAction::triggered, this, [this] { Guarded({}, [this] { help_.ShowContents(); }); });
  connect(ui_->mnuHelpIndex, &QAction::triggered, this, [this] { Guarded({}, [this] { help_.ShowIndex(); }); });
  connect(ui_->mnuAbout, &QAction::triggered, this, [this] {
    Guarded({}, [this] {
      messages_.Ask({.title = "Über das Programm", .text = "QuiverionSeries V1.0", .icon = MessageIcon::information});
    });
  });
}

void frmMain::ConnectTools() {
  connect(ui_->mnuShowField, &QAction::triggered, this, [this] {
    const std::vector<std::string> selected = ui_->Files->SelectedNames();
    ShowField(selected.empty() ? std::string() : selected.front());
  });
  connect(ui_->mnuShowPreview, &QAction::triggered, this, [this] {
    Guarded("mnuShowPreview", [this] {
      tools_.ShowPreview();
      FilesChanged();
    });
  });
  connect(ui_->mnuLastRun, &QAction::triggered, this, [this] { lastRun_.ShowTable(*this); });
  connect(&lastRun_, &LastRun::FieldWanted, this, [this](const std::string& path) { tools_.ShowField(path); });
  connect(&lastRun_, &LastRun::FilesChosen, this, &frmMain::ShowFiles);
  connect(ui_->mnuImportFiles, &QAction::triggered, this, [this] { ImportFiles({}); });
  connect(ui_->mnuExportFields, &QAction::triggered, this, &frmMain::ExportFields);
  connect(&exchange_, &ExchangeWindows::FilesChosen, this, &frmMain::ShowFiles);
  connect(ui_->mnuRunPlan, &QAction::triggered, &forecast_, &RunForecast::Show);
  connect(&forecast_, &RunForecast::Wanted, this, &frmMain::ShowForecast);
  connect(&tools_, &ToolWindows::MacroEdited, &macro_, &MacroPanel::ShowParameters);
  connect(&macro_, &MacroPanel::Changed, this, &frmMain::MacroChanged);
  connect(&files_, &FilePanel::Changed, this, &frmMain::FilesChanged);
  connect(&files_, &FilePanel::FieldWanted, this, &frmMain::ShowField);
}

void frmMain::MacroChanged(int line) {
  tools_.MacroChanged(line);
  files_.MacroChanged();
  forecast_.Refresh();
}

void frmMain::ShowForecast(const std::shared_ptr<const PlannedRun>& forecast) {
  if (!isVisible() || IsBehindDialog(*this)) return;
  Guarded("mnuRunPlan", [&] {
    frmRunPlan window(forecast, this);
    RunModal(window);
  });
}

std::vector<std::string> frmMain::ChosenNames() const {
  std::vector<std::string> names = ui_->Files->SelectedNames();
  return names.empty() ? ui_->Files->Names() : names;
}

void frmMain::FilesChanged() {
  forecast_.Refresh();
  if (tools_.HasPreview()) tools_.FilesChanged(WithSeparator(ui_->Directory->Path()), ChosenNames());
}

void frmMain::ShowFiles(const std::string& directory, const std::vector<std::string>& names) {
  if (OpenDirectory(directory)) files_.SelectFiles(names);
}

std::optional<std::string> frmMain::ChooseMacroFile(FileQuestion::Kind kind, const char* title) {
  return ChooseFileWithExtension(dialogs_, machine_.files, messages_,
                                 {.kind = kind,
                                  .title = title,
                                  .filters = {"QuiverionSeries-Makro (*.mak)"},
                                  .directory = ui_->Directory->Path(),
                                  .extension = "mak"});
}

void frmMain::OpenMacro() {
  Guarded("mnuOpenMacroList", [this] {
    const auto path = ChooseMacroFile(FileQuestion::Kind::open, "Makro öffnen");
    if (path) macro_.Load(*path);
  });
}

void frmMain::SaveMacro() {
  Guarded("mnuSaveMacroList", [this] {
    const auto path = ChooseMacroFile(FileQuestion::Kind::save, "Makro speichern");
    if (path) SaveMacroFile(session_, *path);
  });
}

void frmMain::changeEvent(QEvent* event) {
  QMainWindow::changeEvent(event);
  // Other programs may have written files meanwhile.
  if (event->type() == QEvent::ActivationChange && isActiveWindow()) forecast_.Refresh();
}

void frmMain::Start() {
  if (session_.context.busy) return;  // the running operation keeps its files and its log
  const QPoint place = pos();
  Guarded("pruefungen", [this, place] {
    session_.selectedFiles = ui_->Files->SelectedNames();
    session_.inputDirectory = WithSeparator(ui_->Directory->Path());
    tools_.StopPreview();
    forecast_.Stop();
    if (!lastRun_.Start()) return;
    if (!quitting_) lastRun_.ShowLog();
    if (quitting_) return;
    ShowAt(place);
    files_.ReadLists();
  });
  if (quitting_) return;
  tools_.Reload();
  forecast_.Resume();
  if (isVisible()) return;
  messages_.RunEnded();  // an error ended the run: the window must not stay hidden
  ShowAt(place);
}

void frmMain::ShowAt(QPoint place) {
  show();
  if (isMaximized()) return;
  WaitUntilPlaced();
  move(place);
}

void frmMain::WaitUntilPlaced() {
  QElapsedTimer time;
  time.start();
  while (!windowHandle()->isExposed() && time.elapsed() < kPlacementTime) {
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
  }
}

bool frmMain::RefuseWhileBusy(std::string_view title) {
  if (!session_.context.busy) return false;
  messages_.Ask({.title = std::string(title), .text = "Es wird bereits eine Statistik berechnet!"});
  return true;
}

void frmMain::RunStatistic(const StatisticTexts& texts) {
  Guarded(texts.item, [this, &texts] {
    if (RefuseWhileBusy(texts.title)) return;
    LogText log;
    const AttachedSink attached(log_, log);
    session_.context.runHadError = false;
    const auto begins = [&](const std::string& collection) {
      forecast_.Stop();
      computation_ =
          std::string(texts.title.substr(texts.title.find('-') + 2)) + " aus " + std::string(FileNameOf(collection));
    };
    const bool begun = StatisticsCommandFlow(session_.context, dialogs_, texts, ui_->Directory->Path(), begins);
    // The result is saved as in a run, so errors are in the log.
    if (begun && session_.context.runHadError) {
      messages_.Ask({.title = std::string(texts.title), .text = log.Text()});
    }
    if (begun && !quitting_) files_.ReadLists();
    tools_.Reload();
    forecast_.Resume();
  });
}

void frmMain::EditCollection() {
  Guarded("mnuEditCollection", [this] {
    if (RefuseWhileBusy(kCollectionTitle)) return;
    const auto path = ChooseCollection(dialogs_, machine_.files, messages_, kCollectionTitle, ui_->Directory->Path());
    if (path) ShowCollection(*path);
  });
}

void frmMain::ShowCollection(const std::string& path) {
  dialogs_.SetTopic("mnuEditCollection");
  if (RefuseWhileBusy(kCollectionTitle)) return;
  frmShowCollection window(session_.context, path, this);
  if (!window.FillListBox()) return;
  RunModal(window);
  if (window.ProgramMustEnd()) Quit();
}

void frmMain::ShowField(const std::string& name) {
  Guarded("mnuShowField", [&] {
    const std::string& directory = ui_->Directory->Path();
    tools_.ShowField(name.empty() ? directory : WithSeparator(directory) + name);
  });
}

void frmMain::ImportFiles(const std::vector<std::string>& paths) {
  Guarded("mnuImportFiles", [&] {
    if (!RefuseWhileBusy(kImportTitle)) exchange_.ShowImport(*this, ui_->Directory->Path(), paths);
  });
}

void frmMain::ExportFields() {
  Guarded("mnuExportFields", [this] {
    if (!RefuseWhileBusy(kExportTitle)) exchange_.ShowExport(*this, ui_->Directory->Path(), ChosenNames());
  });
}

void frmMain::ComputationStarted() {
  setCursor(Qt::WaitCursor);
  ui_->cmdOk->hide();
  ui_->cmdCancel->hide();
  ui_->ProgressBar->setRange(0, 1);
  ui_->ProgressBar->setValue(0);
  ui_->ProgressBar->show();
  computing_.start();
  ShowComputation(0, 1);
}

void frmMain::ShowComputation(std::int64_t done, std::int64_t total) {
  ui_->ProgressBar->setRange(0, static_cast<int>(total));
  ui_->ProgressBar->setValue(static_cast<int>(done));
  std::string text = (computation_.empty() ? "Statistik" : computation_) + ":  " +
                     std::to_string(100 * done / std::max<std::int64_t>(total, 1)) + " %";
  const double seconds = static_cast<double>(computing_.elapsed()) / 1000.0;
  if (done > 0) {
    text += ",  " + RemainingTimeText(seconds / static_cast<double>(done) * static_cast<double>(total - done));
  }
  ui_->StatusBar->showMessage(ToQt(text));
}

void frmMain::ComputationEnded() {
  ui_->StatusBar->clearMessage();
  ui_->ProgressBar->hide();
  ui_->cmdOk->show();
  ui_->cmdCancel->show();
  unsetCursor();
}

void frmMain::Quit() {
  quitting_ = true;
  hide();
  QCoreApplication::exit();
}

void frmMain::closeEvent(QCloseEvent* event) {
  if (ui_->ProgressBar->isVisible() && !quitting_) {
    dialogs_.SetTopic("beenden");
    const MessageAnswer answer =
        messages_.Ask({.title = "QuiverionSeries - Beenden",
                       .text = "Wollen Sie den aktuellen Vorgang wirklich abbrechen und beenden?",
                       .buttons = MessageButtons::yesNo,
                       .icon = MessageIcon::question,
                       .preselected = MessageAnswer::no});
    if (answer != MessageAnswer::yes) return event->ignore();
  }
  event->accept();
  Quit();
}

void frmMain::keyPressEvent(QKeyEvent* event) {
  const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (!enter) return QMainWindow::keyPressEvent(event);
  if (ui_->cmdOk->isVisible()) ui_->cmdOk->click();
}

void frmMain::dragEnterEvent(QDragEnterEvent* event) {
  if (event->mimeData()->hasUrls()) CopyOnly(*event);
}

void frmMain::dropEvent(QDropEvent* event) {
  CopyOnly(*event);
  // Not inside the drop handler, because the source waits until it ends. A run or a dialog may have begun by then.
  const auto open = [this, paths = LocalPaths(*event)] {
    if (isVisible() && !IsBehindDialog(*this)) OpenPaths(paths);
  };
  QMetaObject::invokeMethod(this, open, Qt::QueuedConnection);
}

void frmMain::OpenPaths(const std::vector<std::string>& paths) {
  WaitUntilPlaced();  // so that dialogs open over the window
  Guarded("mnuOpenMacroList", [&] {
    const auto first = [&paths](std::string_view extension) {
      return std::ranges::find_if(
          paths, [extension](const std::string& path) { return AsciiUpper(path).ends_with(extension); });
    };
    for (const std::string& path : paths) {
      if (machine_.files.IsDirectory(path) || FileExists(machine_.files, path)) continue;
      messages_.Ask({.title = "QuiverionSeries", .text = "Die Datei '" + path + "' ist nicht vorhanden!"});
      return;
    }
    const auto macro = first(".MAK");
    if (macro != paths.end()) macro_.Load(*macro);
    std::vector<std::string> own = paths;
    const std::vector<std::string> foreign = TakeForeignFiles(machine_.files, own);
    const DroppedSelection selection = SelectionOf(machine_.files, own);
    if (!selection.directory.empty() && OpenDirectory(selection.directory)) {
      if (selection.everything) {
        ui_->Files->selectAll();
      } else {
        files_.SelectFiles(selection.names);
      }
    }
    const auto collection = first(".COL");
    if (collection != paths.end()) ShowCollection(*collection);
    if (!foreign.empty()) ImportFiles(foreign);
  });
}

}  // namespace quiverion
