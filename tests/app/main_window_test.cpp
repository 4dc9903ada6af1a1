// The main window: lists, menus, keys, and what goes wrong with them.
#include <QMimeData>
#include <QShortcutEvent>
#include <QStatusBar>
#include <QTableView>
#include <filesystem>

#include "generator/foreign_files.h"
#include "platform/files/paths.h"
#include "support/bytes.h"
#include "window_fixture.h"
#include "windows/dark_palette.h"

namespace quiverion::test {
namespace {

using Names = std::vector<std::string>;

TEST_F(MainWindow, ListsTheFilesOfTheDirectoryAndOpensOthers) {
  Open();
  EXPECT_EQ(Lines(Files()), "a.dat|b.vas|C.VEC|");
  EXPECT_EQ(Directory().Path(), place.Path() + "serie");
  QTest::keyClick(&Directory(), Qt::Key_Backspace);
  EXPECT_EQ(Lines(Files()), "");
  EXPECT_EQ(FromQt(Directory().item(Directory().count() - 1)->text()), "serie");
  Directory().setCurrentRow(Directory().count() - 1);
  QTest::keyClick(&Directory(), Qt::Key_Return);
  EXPECT_EQ(Files().SelectedNames(), Names());
  QTest::keyClick(window.get(), Qt::Key_A, Qt::ControlModifier);
  EXPECT_EQ(Files().SelectedNames(), (Names{"a.dat", "b.vas", "C.VEC"}));
}

TEST_F(MainWindow, ReReadListsKeepTheSelectionOfWhatIsStillThere) {
  Open();
  Files().SelectNames({"a.dat", "C.VEC"});
  std::filesystem::remove(place.Path() + "serie/a.dat");
  place.Write("serie/aa.vas", "");
  place.Write("serie/unter/x.vas", "");
  QTest::mouseClick(Files().viewport(), Qt::RightButton, {}, {5, Files().height() - 30});
  EXPECT_EQ(Lines(Files()), "aa.vas|b.vas|C.VEC|");
  EXPECT_EQ(Files().SelectedNames(), Names{"C.VEC"});
  QTest::keyClick(window.get(), Qt::Key_F5);
  EXPECT_EQ(Files().SelectedNames(), Names{"C.VEC"});
  EXPECT_EQ(FromQt(Directory().item(Directory().count() - 1)->text()), "unter");
}

TEST_F(MainWindow, ADriveThatIsNotReadyIsRefused) {
  drives = {root, place.Path() + "serie", "/nicht/da"};
  Open();
  auto& drive = Get<QComboBox>("Drive");
  EXPECT_EQ(drive.currentIndex(), 1);
  script.ExpectBox(QMessageBox::Ok);
  emit drive.activated(2);
  EXPECT_EQ(drive.currentIndex(), 1);
  QTest::keyClick(&Directory(), Qt::Key_Backspace);
  const std::string inRoot = Directory().Path();
  emit drive.activated(0);  // the drive of the directory: nothing has changed
  EXPECT_EQ(Directory().Path(), inRoot);
  emit drive.activated(1);
  EXPECT_EQ(Directory().Path(), place.Path() + "serie");
  emit drive.activated(0);
  EXPECT_EQ(Directory().Path(), root);
  EXPECT_EQ(drive.currentIndex(), 0);
}

TEST_F(MainWindow, AVanishedDirectoryIsSaidAndLeft) {
  Open();
  std::filesystem::remove_all(place.Path() + "serie");
  script.ExpectBox(QMessageBox::Ok);
  QTest::keyClick(window.get(), Qt::Key_F5);
  EXPECT_EQ(WithSeparator(Directory().Path()), place.Path());
  script.ExpectBox(QMessageBox::Ok);
  window->OpenDirectory(place.Path() + "serie");
  EXPECT_EQ(WithSeparator(Directory().Path()), place.Path());
  EXPECT_TRUE(script.said.starts_with("Verzeichnisauswahl|Das Verzeichnis '" + place.Path() + "serie' kann nicht"))
      << script.said;
  script.said.clear();  // the reason is the system's
}

// The viewer that is open; null if there is none.
frmView* Viewer() {
  for (QWidget* const window : QApplication::topLevelWidgets()) {
    if (auto* const viewer = qobject_cast<frmView*>(window); viewer != nullptr && viewer->isVisible()) return viewer;
  }
  return nullptr;
}

TEST_F(MainWindow, FieldsAreSeenInOneViewer) {
  Open();
  QTest::keyClick(window.get(), Qt::Key_F3);
  ASSERT_NE(Viewer(), nullptr);
  EXPECT_EQ(Viewer()->CurrentPath(), place.At("serie/a.dat")) << "nothing is selected: the directory";
  const frmView* const first = Viewer();
  const QRect third = Files().visualRect(Files().model()->index(2, 0));
  QTest::mouseClick(Files().viewport(), Qt::LeftButton, {}, third.center());
  QTest::mouseDClick(Files().viewport(), Qt::LeftButton, {}, third.center());
  EXPECT_EQ(Viewer()->CurrentPath(), place.At("serie/C.VEC"));
  EXPECT_EQ(Viewer(), first);
  EXPECT_FALSE(Viewer()->isModal());
  Viewer()->close();
  window->activateWindow();
  EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
  EXPECT_EQ(Viewer(), nullptr);
  QTest::keyClick(window.get(), Qt::Key_F3);
  EXPECT_NE(Viewer(), nullptr);
  window.reset();
  EXPECT_EQ(Viewer(), nullptr) << "it closes with the program";
}

// What the window system sends for files that are dropped.
void Drop(QWidget& window, const Names& paths) {
  QMimeData data;
  QList<QUrl> urls;
  for (const std::string& path : paths) urls.append(QUrl::fromLocalFile(ToQt(path)));
  data.setUrls(urls);
  QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
  QApplication::sendEvent(&window, &enter);
  EXPECT_TRUE(enter.isAccepted());
  QDropEvent event({5, 5}, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::ShiftModifier);
  QApplication::sendEvent(&window, &event);
  EXPECT_EQ(event.dropAction(), Qt::CopyAction) << "after a move the source would delete the files";
}

TEST_F(MainWindow, DroppedFilesAreSelected) {
  Open("leer");
  const auto drop = [&](Names paths) {
    for (std::string& path : paths) path.insert(0, place.Path());
    Drop(*window, paths);
    QApplication::processEvents();
  };
  drop({"serie/b.vas", "serie/notes.txt"});
  EXPECT_EQ(Files().SelectedNames(), Names{"b.vas"});
  drop({"serie"});
  EXPECT_EQ(Files().SelectedNames().size(), 3u);
  place.Write("m.mak", test::Bytes().I32(2).I32(40001).I32(40101));
  place.Write("s.col", samples::CollectionBytes({Sample(0)}, {"x"}));
  script.Expect<QDialog>("quiverion::frmShowCollection", [](QDialog& dialog) { Press(dialog, "cmdOk"); });
  drop({"serie/notes.txt", "s.col", "m.mak"});
  EXPECT_EQ(MacroList().count(), 2);
  script.ExpectBox(QMessageBox::Ok);
  drop({"fehlt.vas"});
}

TEST_F(MainWindow, TheMacroListObeysKeysAndTheRightButton) {
  Open();
  SetMacro({40001, 40101, 10001});
  EXPECT_TRUE(Lines(MacroList()).ends_with("Rechteck-Filter|Datei im VAS-Format speichern unter...|"));
  MacroList().setCurrentRow(2);
  QTest::keyClick(&MacroList(), Qt::Key_Up, Qt::AltModifier);
  QTest::keyClick(&MacroList(), Qt::Key_Up, Qt::AltModifier);
  EXPECT_EQ(SelectedLine(), 0);
  QTest::keyClick(&MacroList(), Qt::Key_Down, Qt::AltModifier);
  EXPECT_EQ(SelectedLine(), 1);
  EXPECT_EQ(TheSession().macro[1].EventId(), 10001);
  QTest::keyClick(&MacroList(), Qt::Key_Delete);
  EXPECT_EQ(SelectedLine(), -1);
  EXPECT_EQ(TheSession().macro.size(), 2u);
  script.Expect<QDialog>("quiverion::frmChooseMacroEvent", [](QDialog& dialog) { dialog.reject(); });
  QTest::keyClick(&MacroList(), Qt::Key_Insert);
  MacroList().setCurrentRow(0);
  script.ExpectBox(QMessageBox::Ok);  // no parameters
  QTest::mouseClick(MacroList().viewport(), Qt::LeftButton, {}, {20, 5});
  QTest::mouseDClick(MacroList().viewport(), Qt::LeftButton, {}, {20, 5});
  QTest::mouseClick(MacroList().viewport(), Qt::RightButton, {}, {20, 5});
  EXPECT_EQ(SelectedLine(), -1);
  EXPECT_EQ(window->focusWidget(), &Get<QPushButton>("cmdOk"));
}

// Qt presses the button of a mnemonic 100 ms late, whatever has opened meanwhile. A command was deleted while its
// window was open, and stored after it was gone.
TEST_F(MainWindow, TwoMnemonicsInARowActOneAfterTheOther) {
  Open();
  SetMacro({10001});
  MacroList().setCurrentRow(0);
  script.Expect<QDialog>("quiverion::frmPrefixPostfix", [this](QDialog& dialog) {
    QTest::qWait(150);
    ASSERT_EQ(TheSession().macro.size(), 1u);
    Press(dialog, "cmdOk");
  });
  QTest::keyClick(window.get(), Qt::Key_P, Qt::AltModifier);
  QTest::keyClick(window.get(), Qt::Key_L, Qt::AltModifier);
  QTest::qWait(150);
  EXPECT_EQ(TheSession().macro.size(), 1u) << "behind the window no line is selected";
}

TEST_F(MainWindow, FitsASmallScreenWithLargeLetters) {
  const QFont before = QApplication::font();
  for (const int points : {9, 14, 16}) {
    QFont font = before;
    font.setPointSize(points);
    QApplication::setFont(font);
    Open();
    window->resize(788, 560);  // 800 x 600 without the frame
    QApplication::processEvents();
    EXPECT_TRUE(window->size() == QSize(788, 560)) << points << ": " << window->width() << " x " << window->height();
    ExpectReadable(*window);
  }
  QApplication::setFont(before);
}

// After a file dialog nothing showed the focus, though keys acted: a list shows it by its current line only, other
// controls only after Tab.
TEST_F(MainWindow, ShowsWhereTheFocusIsAfterAFileDialog) {
  Open();
  const auto frame = [](QWidget& list) { return list.grab().toImage().pixelColor(0, list.height() / 2); };
  EXPECT_EQ(frame(MacroList()), QApplication::palette().highlight().color());
  EXPECT_NE(frame(Files()), frame(MacroList()));
  auto& drive = Get<QComboBox>("Drive");
  drive.setFocus();
  window->setAttribute(Qt::WA_KeyboardFocusChange, false);  // as after a click
  const QImage before = drive.grab().toImage();
  script.ExpectFile(place.Path() + "m");
  QTest::keyClick(window.get(), Qt::Key_S, Qt::ControlModifier);
  EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
  EXPECT_TRUE(drive.hasFocus());
  EXPECT_NE(drive.grab().toImage(), before);
}

TEST_F(MainWindow, ArrowsHaveTheColourOfTexts) {
  Open();
  const auto colour = [this] {
    const QImage arrow = Get<QPushButton>("cmdMoveUp").icon().pixmap(16).toImage();
    return FromQt(arrow.pixelColor(arrow.width() / 2, arrow.height() / 2).name());
  };
  EXPECT_EQ(colour(), FromQt(QApplication::palette().buttonText().color().name()));
  const DarkPalette dark;
  EXPECT_EQ(colour(), FromQt(QApplication::palette().buttonText().color().name()));
}

// Qt gives a mnemonic that two controls share to each in turn, but a button then only took the focus.
TEST_F(MainWindow, TheMnemonicOfStartAndStatisticActsEachTime) {
  Open();
  QMenu& menu = Get<QMenu>("mnuStatistics");
  for (int turn = 0; turn < 2; ++turn) {
    script.ExpectBox(QMessageBox::Ok);
    QTest::keyClick(window.get(), Qt::Key_S, Qt::AltModifier);
    EXPECT_NE(script.said.find("mindestens eine Datei"), std::string::npos) << "Start was not pressed";
    script.said.clear();
    EXPECT_FALSE(menu.isVisible());
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    QTest::keyClick(window.get(), Qt::Key_S, Qt::AltModifier);
    EXPECT_TRUE(menu.isVisible());
    menu.close();
  }
}

// A key may arrive before the window opened by the previous key is active. Qt blocks keys to a window behind a dialog,
// but not its shortcuts.
TEST_F(MainWindow, ShortcutsOfAWindowBehindADialogDoNothing) {
  Open();
  SetMacro({10001});
  MacroList().setCurrentRow(0);
  script.Expect<QDialog>("quiverion::frmPrefixPostfix", [this](QDialog& dialog) {
    QShortcutEvent late({}, 0);
    QApplication::sendEvent(window->findChild<QAction*>("mnuOpenMacroList"), &late);
    EXPECT_EQ(QApplication::activeModalWidget(), &dialog);
    Press(dialog, "cmdOk");
  });
  Click("cmdEditMacroEvent");
}

TEST_F(MainWindow, FilesOfOtherProgramsLeadToTheirImportAndAreSelectedThen) {
  for (const char* name : {"fremd/B1.txt", "fremd/B2.txt"}) {
    place.Write(name, samples::ForeignSampleOf("davis8.txt").bytes(Sample(0)));
  }
  place.Write("fremd/L1.vec", samples::ForeignSampleOf("insight.vec").bytes(Sample(0)));
  Open();
  script.Expect<QDialog>("quiverion::frmImport", [&](QDialog& import) {
    auto& button = Find<QPushButton>(import, "cmdImport");
    EXPECT_TRUE(QTest::qWaitFor([&] { return button.isEnabled(); }));
    EXPECT_EQ(Lines(Find<QTableView>(import, "tblFiles")), "B1.txt|B2.txt|L1.vec|");
    button.click();
    EXPECT_TRUE(QTest::qWaitFor([&] { return place.Has("fremd/VAS/L1.vas"); }));
    auto& close = Find<QPushButton>(import, "cmdCancel");
    EXPECT_TRUE(QTest::qWaitFor([&] { return close.text().endsWith("ließen"); }));
    close.click();
  });
  Drop(*window, {place.At("fremd/B1.txt"), place.At("fremd/L1.vec"), place.At("fremd/B2.txt")});
  EXPECT_TRUE(QTest::qWaitFor([&] { return Files().SelectedNames().size() == 3; }));
  EXPECT_EQ(Files().SelectedNames(), (Names{"B1.vas", "B2.vas", "L1.vas"}));
  EXPECT_EQ(Directory().Path(), place.At("fremd/VAS"));
  // The export begins with what is selected.
  Files().SelectNames({"L1.vas"});
  script.Expect<QDialog>("quiverion::frmExport", [&](QDialog& exporting) {
    EXPECT_EQ(Lines(Find<QTableView>(exporting, "tblFiles")), "L1.vas|");
    Press(exporting, "cmdExport");
    EXPECT_TRUE(QTest::qWaitFor([&] { return Find<QLabel>(exporting, "lblState").text().endsWith("geschrieben"); }));
    QTest::keyClick(&exporting, Qt::Key_Escape);
  });
  Trigger("mnuExportFields");
  EXPECT_TRUE(place.Has("fremd/VAS/L1.nc"));
}

// Dropped files are opened after the drop, and a click may come in between. A macro was replaced while one of its
// commands was being edited.
TEST_F(MainWindow, ADropJustBeforeADialogIsNotOpenedBehindIt) {
  place.Write("m.mak", test::Bytes().I32(1).I32(40001));
  Open();
  SetMacro({40001, 10001});
  MacroList().setCurrentRow(1);
  script.Expect<QDialog>("quiverion::frmPrefixPostfix", [this](QDialog& dialog) {
    ASSERT_EQ(TheSession().macro.size(), 2u);
    Press(dialog, "cmdOk");
  });
  Drop(*window, {place.Path() + "m.mak"});
  Click("cmdEditMacroEvent");
  EXPECT_EQ(TheSession().macro.size(), 2u);
}

TEST_F(MainWindow, StartAsksForFilesBeforeCommands) {
  Open();
  script.ExpectBox(QMessageBox::Ok);
  QTest::keyClick(window.get(), Qt::Key_Return);
  Files().selectAll();
  script.ExpectBox(QMessageBox::Ok);
  Click("cmdOk");
  EXPECT_TRUE(window->isVisible());
}

TEST_F(MainWindow, TellsItsVersionAndThatTheHelpIsMissing) {
  Open();
  script.ExpectBox(QMessageBox::Ok);
  Trigger("mnuAbout");
  script.ExpectBox(QMessageBox::Ok);
  Trigger("mnuShowHelp");
}

TEST_F(MainWindow, EveryControlShowsItsTextAndHasANameForScreenReaders) {
  ExpectReadable(Open());
}

// A collection of many small records, so that a statistic yields often.
class DuringAStatistic : public MainWindow {
 protected:
  DuringAStatistic() {
    const std::vector<samples::SampleField> fields(40, Sample(0));
    place.Write("s.col", samples::CollectionBytes(fields, std::vector<std::string>(40, "x")));
    Open();
    script.ExpectBox(QMessageBox::Ok);
    script.ExpectFile(place.Path() + "s.col");
    script.ExpectBox(QMessageBox::Ok);
    script.ExpectFile(place.Path() + "s_mean.vas");
  }
  // Calls `action` once while the statistic is computed.
  void Meanwhile(std::function<void()> action) {
    auto* const timer = new QTimer(window.get());
    QObject::connect(timer, &QTimer::timeout, [this, timer, action] {
      if (!Get<QProgressBar>("ProgressBar").isVisible() || Get<QProgressBar>("ProgressBar").maximum() != 40) return;
      timer->stop();
      action();
    });
    timer->start(0);
  }
};

TEST_F(DuringAStatistic, StartGivesWayAndASecondOneIsRefused) {
  bool seen = false;
  Meanwhile([&] {
    seen = true;
    EXPECT_FALSE(Get<QPushButton>("cmdOk").isVisible() || Get<QPushButton>("cmdCancel").isVisible());
    EXPECT_EQ(window->cursor().shape(), Qt::WaitCursor);
    const QString said = Get<QStatusBar>("StatusBar").currentMessage();
    EXPECT_TRUE(said.startsWith("Mittelwert berechnen aus s.col:  ") && said.contains(" %")) << FromQt(said);
    QTest::keyClick(window.get(), Qt::Key_Return);  // starts nothing
    script.ExpectBox(QMessageBox::Ok);
    Trigger("mnuAvgUsTimesVs");
    script.ExpectBox(QMessageBox::Ok);
    Trigger("mnuEditCollection");
  });
  Trigger("mnuAverage");
  EXPECT_TRUE(seen);
  EXPECT_TRUE(place.Has("s_mean.vas"));
  EXPECT_TRUE(Get<QPushButton>("cmdOk").isVisible());
  EXPECT_FALSE(Get<QProgressBar>("ProgressBar").isVisible());
  EXPECT_EQ(Get<QStatusBar>("StatusBar").currentMessage(), "");
}

TEST_F(DuringAStatistic, ClosingTheWindowAsksFirst) {
  Meanwhile([&] {
    script.ExpectBox(QMessageBox::No);
    EXPECT_FALSE(window->close());
    script.ExpectBox(QMessageBox::Yes);
    EXPECT_TRUE(window->close());
  });
  Trigger("mnuAverage");
  EXPECT_TRUE(window->IsQuitting());
  EXPECT_FALSE(place.Has("s_mean.vas"));
}

TEST_F(MainWindow, AStatisticThatFailsLeavesTheWindowAsItWas) {
  place.Write("s.col", "no collection");
  Open();
  script.ExpectBox(QMessageBox::Ok);
  script.ExpectFile(place.Path() + "s.col");
  script.ExpectBox(QMessageBox::Ok);
  script.ExpectFile(place.Path() + "r.vas");
  script.Expect<QMessageBox>("QMessageBox", [this](QMessageBox& box) {
    EXPECT_TRUE(Get<QPushButton>("cmdOk").isVisible());
    EXPECT_FALSE(Get<QProgressBar>("ProgressBar").isVisible());
    place.Write("serie/neu.vas", "");
    box.accept();
  });
  Trigger("mnuAverage");
  EXPECT_EQ(Lines(Files()), "a.dat|b.vas|C.VEC|neu.vas|");
}

}  // namespace
}  // namespace quiverion::test
