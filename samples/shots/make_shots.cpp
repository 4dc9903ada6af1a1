// Saves a picture of every window, filled from a series: make_shots MAKRO SERIE ZIEL [PUNKTE] [dunkel]
#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QTableView>
#include <QThread>
#include <QTimer>
#include <QTreeWidget>
#include <fstream>
#include <iostream>

#include "app/drives.h"
#include "app/file_list.h"
#include "app/frmMain.h"
#include "dialogs/application.h"
#include "dialogs/exchange/frmExport.h"
#include "dialogs/exchange/frmImport.h"
#include "dialogs/frmShowCollection.h"
#include "dialogs/frmShowLogFile.h"
#include "dialogs/frmShowProgress.h"
#include "dialogs/help/frmHelp.h"
#include "dialogs/parameters/frmEditVector.h"
#include "dialogs/parameters/frmFaultVectors.h"
#include "dialogs/parameters/frmMirrorOptions.h"
#include "dialogs/parameters/frmPrefixPostfix.h"
#include "dialogs/parameters/frmXYTrafo.h"
#include "dialogs/parameters/parameter_editing.h"
#include "dialogs/widgets/find_bar.h"
#include "dialogs/widgets/message_box.h"
#include "dialogs/widgets/qt_text.h"
#include "generator/foreign_files.h"
#include "macro/macro_file.h"
#include "macro/run_driver.h"
#include "macro/series_files.h"
#include "messages/silent_user_interface.h"
#include "platform/files/overlay_files.h"
#include "platform/files/paths.h"
#include "view/frmView.h"
#include "view/preview/frmPreview.h"

namespace quiverion {
namespace {

class Shots {
 public:
  Shots(std::string macro, std::string series, QString target)
      : macro_(std::move(macro)), series_(std::move(series)), target_(std::move(target)) {}

  void TakeAll() {
    Windows();
    Viewer();
    Preview();
    Exchange();
    ParameterWindowsWithDefaults();
    Collection();
    HelpWindow();
    Boxes();
    Menus();
  }
  bool Complete() const { return complete_; }

 private:
  void Save(QWidget& widget, const QString& name) {
    QApplication::processEvents();
    complete_ = widget.grab().save(target_ + "/" + name + ".png") && complete_;
  }
  static void Wait(int milliseconds) {
    QElapsedTimer time;
    for (time.start(); time.elapsed() < milliseconds;) QApplication::processEvents(QEventLoop::AllEvents, 20);
  }
  void Show(QWidget& widget, const QString& name) {
    widget.show();
    Save(widget, name);
    widget.hide();
  }
  // Takes a picture of what `open` shows modally, and closes it.
  void Modal(const QString& name, const std::function<void()>& open) {
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
      QWidget* const window = QApplication::activeModalWidget();
      if (window == nullptr) return;
      timer.stop();
      Save(*window, name);
      window->close();
    });
    timer.start(50);
    open();
  }

  void Windows() {
    main_.TheSession().macro = Macro();
    main_.ShowMacro(1);
    main_.OpenDirectory(series_);
    main_.findChild<FileList*>("Files")->SelectNames(Names());
    main_.show();
    Wait(300);  // for the status bar
    Save(main_, "frmMain");
    main_.ComputationStarted();
    main_.ShowComputation(7, 12);
    Save(main_, "frmMain-Statistik");
    main_.ComputationEnded();

    Modal("frmShowLogFile", [this] { main_.findChild<QPushButton*>("cmdOk")->click(); });
    TakeFindBar();
    Modal("frmRunPlan", [this] {
      Wait(300);
      main_.findChild<QAction*>("mnuRunPlan")->trigger();
    });
    Modal("frmOpenDirectory", [this] { main_.findChild<QAction*>("mnuOpenDirectory")->trigger(); });
    Modal("frmRunTable", [this] { main_.findChild<QAction*>("mnuLastRun")->trigger(); });
    frmShowProgress progress(ui_);
    QThread::msleep(200);  // so that there is a time left
    progress.Show({500, 15, 14, "run15.vec", "Fehlerhafte Vektoren suchen", true, 1});
    Show(progress, "frmShowProgress");
  }

  // A log in which something is looked for.
  void TakeFindBar() {
    LogText text;
    RunLog log;
    log.Attach(text);
    for (const char* piece : {"Orginaldatei 'run13.vas' einladen... ", "!!! FEHLER !!!\r\n", "    Dateiende\r\n"}) {
      log.WriteLogLine(piece);
    }
    frmShowLogFile window(text, series_ + "/Log.rtf", *files_, ui_);
    window.ShowSummary("13 Dateien, 1 mit Fehlern");
    window.show();
    window.findChild<FindBar*>()->Open();
    window.findChild<QLineEdit*>("txtFind")->setText(QStringLiteral("Dateianfang"));
    window.findChild<FindBar*>()->FindNext();
    Show(window, "frmShowLogFile-Suchen");
  }

  // Fields in memory, with rejected and filled vectors over their vorticity.
  void Viewer() {
    OverlayFiles overlay(*files_);
    SilentUserInterface ui;
    RunLog log;
    Session session{overlay, ui, log, clock_};
    session.inputDirectory = WithSeparator(series_);
    session.selectedFiles = Names();
    const MacroEvent search = Macro()[1];
    MacroEvent save(10001);
    save.Set("Prefix", std::string("Ansicht/"));
    save.Set("Postfix", std::string());
    session.macro = {search, MacroEvent(40001), search, MacroEvent(50103), save};
    RunMacro(session);

    frmView viewer({overlay, clock_, [] {}});
    viewer.OpenPaths({WithSeparator(series_) + "Ansicht/run01.vas"});
    // Without their mean, the velocities show the vortices.
    for (const char* item : {"mnuSubtractMean", "mnuLonger"}) viewer.findChild<QAction*>(item)->trigger();
    Show(viewer, "frmView");
    viewer.findChild<QAction*>("mnuTable")->trigger();
    Show(viewer, "frmView-Tabelle");
  }

  // Two limits are being sought: the wipe between before and after.
  void Preview() {
    MacroEvent search = Macro()[1];
    AddDefaultParameters(search);
    search.Set("ChkAbsDeviation", 1);
    search.Set("ChkDirDeviation", 1);
    search.Set("CompareVectorType", 3);
    const BufferField buffer;
    frmPreview preview({*files_, clock_, '.', [] {}, [&]() -> const BufferField& { return buffer; }});
    preview.show();
    preview.ShowMacro({search, MacroEvent(40001), MacroEvent(40103)}, 0);
    preview.ShowFiles(WithSeparator(series_), Names());
    preview.findChild<QAction*>("mnuWipe")->trigger();
    const auto* const together = preview.findChild<QLabel*>("lblTogether");
    QElapsedTimer time;
    for (time.start(); time.elapsed() < 1500 || together->text().isEmpty();) {
      QApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    Save(preview, "frmPreview");
  }

  // Files of several programs, one of them damaged, one there already.
  void Exchange() {
    const std::string directory = WithSeparator(series_) + "Austausch/";
    QDir().mkpath(PathToQt(directory + "VAS"));
    const samples::SampleField field = samples::MakeSampleField({.columns = 60, .rows = 45});
    const std::pair<const char*, const char*> files[] = {
        {"davis8.txt", "B00001.txt"},     {"davis8.txt", "B00002.txt"},      {"insight.vec", "Lauf0001.vec"},
        {"openpiv5.txt", "exp1_001.txt"}, {"pivlab.txt", "PIVlab_0001.txt"}, {"vc7_5.vc7", "B00003.vc7"}};
    std::vector<std::string> paths = {directory + "kaputt.csv"};
    std::ofstream(paths.front()) << "x,y,u,v\n1,2,3\n";
    std::ofstream(directory + "VAS/Lauf0001.vas") << "alt";
    for (const auto& [sample, name] : files) {
      paths.push_back(directory + name);
      std::ofstream(paths.back(), std::ios::binary) << samples::ForeignSampleOf(sample).bytes(field);
    }
    frmImport import({*files_, clock_, ui_});
    import.show();
    import.AddPaths(paths);
    const auto* const state = import.findChild<QPushButton*>("cmdImport");
    for (QElapsedTimer time = Started(); !state->isEnabled() && time.elapsed() < 5000;) QApplication::processEvents();
    import.findChild<QTableView*>()->selectRow(3);
    Save(import, "frmImport");
    frmExport exporting({*files_, clock_, ui_});
    std::vector<std::string> fields;
    for (const std::string& name : Names()) fields.push_back(WithSeparator(series_) + name);
    exporting.AddPaths(fields);
    exporting.findChild<QCheckBox*>("chkSeries")->click();
    exporting.findChild<QLineEdit*>("txtTimeStep")->setText("0.001");
    Show(exporting, "frmExport");
    frmView viewer({*files_, clock_, [] {}});
    viewer.OpenPaths({paths[1]});
    Show(viewer, "frmView-fremd");
    QDir(PathToQt(directory)).removeRecursively();
  }

  static QElapsedTimer Started() {
    QElapsedTimer time;
    time.start();
    return time;
  }

  template <class Window>
  void Parameters(Window& window, const QString& name, MacroEvent event) {
    AddDefaultParameters(event);
    window.Load(event);
    Show(window, name);
  }

  void ParameterWindowsWithDefaults() {
    frmFaultVectors faultVectors(ui_);
    MacroEvent event = Macro()[1];
    Parameters(faultVectors, "frmFaultVectors", event);
    frmFaultVectors empty(ui_);
    Parameters(empty, "frmFaultVectors-neu", MacroEvent(30001));
    frmPrefixPostfix names(ui_);
    Parameters(names, "frmPrefixPostfix", MacroEvent(10101));
    frmPrefixPostfix unnamed(ui_);
    Parameters(unnamed, "frmPrefixPostfix-leer", MacroEvent(10001));
    frmXYTrafo trafo(ui_);
    Parameters(trafo, "frmXYTrafo", MacroEvent(30003));
    frmMirrorOptions mirror(ui_);
    Parameters(mirror, "frmMirrorOptions", MacroEvent(30002));
    frmEditVector vector(ui_, ToQt(FindCommand(40201)->editor.title));
    Parameters(vector, "frmEditVector", MacroEvent(40201));
    frmChooseMacroEvent tree;
    tree.findChild<QTreeWidget*>()->expandItem(tree.findChild<QTreeWidget*>()->topLevelItem(3));
    Show(tree, "frmChooseMacroEvent");
  }

  // The collection of the run.
  void Collection() {
    frmShowCollection collection(main_.TheSession().context, series_ + "/Serie.col");
    collection.FillListBox();
    auto* const list = collection.findChild<QListWidget*>();
    for (const int line : {2, 3, 7}) {
      if (list->item(line) != nullptr) list->item(line)->setSelected(true);
    }
    Show(collection, "frmShowCollection");
  }

  void HelpWindow() {
    main_.findChild<QAction*>("mnuShowHelp")->trigger();
    for (QWidget* window : QApplication::topLevelWidgets()) {
      auto* const help = qobject_cast<frmHelp*>(window);
      if (help == nullptr) continue;
      help->ShowTopic("mnuDissipation");
      Show(*help, "frmHelp");
    }
  }

  void Boxes() {
    ParameterWindows dialogs(main_, ui_);
    Modal("Eingabe", [&] {
      const CommandRow& command = *FindCommand(50104);
      dialogs.AskText({std::string(command.editor.title), std::string(command.editor.text),
                       std::string(command.parameters.front().preset)});
    });
    Modal("Datei", [&] {
      dialogs.ChooseFile({.kind = FileQuestion::Kind::save,
                          .title = "Makro speichern",
                          .filters = {"QuiverionSeries-Makro (*.mak)"},
                          .directory = series_,
                          .extension = "mak"});
    });
    const auto box = [&](const QString& name, const Message& message) {
      Modal(name, [&] { ShowMessageBox(&main_, message); });
    };
    const ParameterEditor& question = FindCommand(50003)->editor;
    box("Frage", {.title = std::string(question.title),
                  .text = std::string(question.text),
                  .buttons = MessageButtons::yesNoCancel,
                  .icon = MessageIcon::question,
                  .preselected = MessageAnswer::no});
    box("Abbruch", {.title = "QuiverionSeries  -  Makro-Ausführung abbrechen",
                    .text = "Damit wird die Makro-Ausführung beendet. Soll die Ausführung wirklich beendet werden?",
                    .buttons = MessageButtons::yesNo,
                    .icon = MessageIcon::question});
    box("Datei-fehlt", {.title = "QuiverionSeries  -  Fehler im Makro",
                        .text = "Die Datei '" + series_ +
                                "/fehlt.vas' kann nicht geöffnet werden!\r\nDatei nicht vorhanden, beschädigt oder "
                                "wird bereits verwendet.",
                        .buttons = MessageButtons::abortRetryIgnore});
  }

  void Menus() {
    for (const char* name : {"mnuFile", "mnuStatistics", "mnuTools", "mnuHelpMenu"}) {
      QMenu* const menu = main_.findChild<QMenu*>(name);
      menu->popup(main_.mapToGlobal(QPoint(0, 20)));
      Save(*menu, name);
      menu->close();
    }
  }

  MacroEventList Macro() { return ReadMacro(*files_->OpenForReading(macro_)); }
  std::vector<std::string> Names() { return ListSeriesFiles(*files_, series_); }

  std::string macro_, series_;
  QString target_;
  bool complete_ = true;
  std::unique_ptr<FileSystem> files_ = MakeSystemFileSystem();
  SystemClock clock_;
  frmMain main_{Machine{.files = *files_,
                        .clock = clock_,
                        .listDrives = MountedDrives,
                        .startDirectory = series_,
                        .helpFile = PathFromQt(QApplication::applicationDirPath() + "/Quiverion.hlp")}};
  UserInterface& ui_ = main_.TheSession().context.ui;
};

}  // namespace
}  // namespace quiverion

namespace {

// A desktop with another size of letters or dark colours.
void UseDesktop(const QStringList& words) {
  for (const QString& word : words) {
    if (word == "dunkel") {
      QPalette dark(QColor("#31363b"));
      dark.setColor(QPalette::Base, QColor("#1b1e20"));
      QApplication::setPalette(dark);
    } else {
      QFont font = QApplication::font();
      font.setPointSize(word.toInt());
      QApplication::setFont(font);
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  quiverion::PrepareApplication(application);
  const QStringList words = QApplication::arguments();
  if (words.size() < 4 || !QDir().mkpath(words[3])) {
    std::cerr << "Aufruf: make_shots MAKRO SERIE ZIEL [PUNKTE] [dunkel]\n";
    return 2;
  }
  UseDesktop(words.mid(4));
  try {
    quiverion::Shots shots(quiverion::PathFromQt(QDir(words[1]).absolutePath()),
                           quiverion::PathFromQt(QDir(words[2]).absolutePath()), words[3]);
    shots.TakeAll();
    return shots.Complete() ? 0 : 1;
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
