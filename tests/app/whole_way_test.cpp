// The whole way of a user through the program, with clicks and keys: compose, save, load and run a macro, abort a run,
// read and save the log. The command line gives the same results, bit for bit.
#include <QCheckBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPrinter>
#include <QTableView>
#include <QTreeWidget>

#include <QTextBlock>
#include "dialogs/frmShowLogFile.h"
#include "support/test_session.h"
#include "window_fixture.h"
#include "windows/dark_palette.h"

namespace quiverion::test {
namespace {

// Up to the verdict, because the duration of a run varies.
std::string UpToVerdict(const std::string& log) {
  return log.substr(0, log.find('\n', log.rfind("Makro-Ausf")) + 1);
}

class WholeWay : public MainWindow {
 protected:
  // Reads the log and closes its window.
  void ExpectLog(std::string* text, std::function<void(QDialog&)> look = {}) {
    script.Expect<QDialog>("quiverion::frmShowLogFile", [this, text, look](QDialog& dialog) {
      EXPECT_FALSE(window->isVisible());
      *text = FromQt(Find<QPlainTextEdit>(dialog, "RichTextBox").toPlainText());
      if (look) look(dialog);
      Press(dialog, "cmdOk");
    });
  }
};

TEST_F(WholeWay, ComposesSavesLoadsRunsAndSavesTheLog) {
  place.Write("serie/kaputt.vas", "no field");
  Open("leer");
  window->OpenDirectory(place.Path() + "serie");
  SetMacro({10002, 40001, 60001});
  TheSession().macro[0].Set("Comment", std::string("Kommentar"));
  TheSession().macro[2].Set("FileName", place.Path() + "serie/Serie.col");
  // A command is inserted at the end through its dialogs, and one is edited and moved.
  MacroList().setCurrentRow(-1);
  script.Expect<QDialog>("quiverion::frmChooseMacroEvent", [](QDialog& dialog) {
    auto& tree = Find<QTreeWidget>(dialog, "tvwMacroEvents");
    for (QTreeWidgetItemIterator item(&tree); *item != nullptr; ++item) {
      if ((*item)->data(0, Qt::UserRole) == "K10001") tree.setCurrentItem(*item);
    }
    Press(dialog, "cmdOk");
  });
  script.Expect<QDialog>("quiverion::frmPrefixPostfix", [](QDialog& dialog) {
    Type(dialog, "txtPrefix", "neu/");
    Type(dialog, "txtPostfix", "_x");
    Press(dialog, "cmdOk");
  });
  Click("cmdNewMacroEvent");
  MacroList().setCurrentRow(0);
  script.Expect<QDialog>("QInputDialog", [](QDialog& dialog) {
    dialog.findChild<QLineEdit*>()->setText("Neuer Kommentar");
    dialog.accept();
  });
  Click("cmdEditMacroEvent");
  MacroList().setCurrentRow(0);
  Click("cmdMoveDown");
  EXPECT_EQ(TheSession().macro[1].Text("Comment"), "Neuer Kommentar");
  script.ExpectFile(place.Path() + "macro");
  Trigger("mnuSaveMacroList");
  SetMacro({});
  script.ExpectFile(place.Path() + "macro.mak");
  Trigger("mnuOpenMacroList");
  ASSERT_EQ(TheSession().macro.size(), 4u);
  EXPECT_EQ(TheSession().macro[3].EventId(), 10001);

  Files().selectAll();
  std::string log;
  ExpectLog(&log, [&](QDialog& dialog) {
    script.ExpectBox(QMessageBox::Ok);
    Press(dialog, "cmdSave");
  });
  Click("cmdOk");
  EXPECT_TRUE(window->isVisible());
  EXPECT_EQ(FromQt(Directory().item(Directory().count() - 1)->text()), "neu");

  // The command line, on the same files: the same results and the same log.
  const std::vector<std::string> results = {"serie/neu/a_x.vas", "serie/neu/b_x.vas", "serie/neu/C_x.vas",
                                            "serie/Serie.col"};
  std::vector<std::string> ofWindow;
  for (const std::string& name : results) {
    ofWindow.push_back(place.Read(name));
    std::remove((place.Path() + name).c_str());
  }
  const std::string rtf = place.Read("serie/Log.rtf");
  const cli::Outcome outcome =
      cli::RunProgram(place, {"run", "--macro", "macro.mak", "--log", "cli.rtf", place.Path() + "serie"});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_EQ(UpToVerdict(log), UpToVerdict(outcome.out));
  EXPECT_EQ(UpToVerdict(rtf), UpToVerdict(place.Read("cli.rtf")));
  for (std::size_t k = 0; k < results.size(); ++k) EXPECT_EQ(place.Read(results[k]), ofWindow[k]) << results[k];
}

TEST_F(WholeWay, ARunIsAbortedInItsProgressWindow) {
  for (int k = 0; k < 40; ++k) place.Write("serie/x" + std::to_string(10 + k) + ".vas", samples::VasBytes(Sample(k)));
  Open();
  SetMacro({40001, 40101, 40102});
  Files().selectAll();
  int closed = 0;
  std::string log;
  auto* const timer = new QTimer(window.get());
  QObject::connect(timer, &QTimer::timeout, [&, timer] {
    for (QWidget* shown : QApplication::topLevelWidgets()) {
      if (QByteArrayView(shown->metaObject()->className()) != "quiverion::frmShowProgress" || !shown->isVisible())
        continue;
      const auto& bar = Find<QProgressBar>(*shown, "pgbProgress");
      EXPECT_EQ(bar.maximum(), 43);
      EXPECT_EQ(FromQt(Find<QLabel>(*shown, "lblFileName").text()), "Aktuelle Datei (1 von 43):  a.dat");
      EXPECT_NE(Find<QLabel>(*shown, "lblRunningEvent").text(), "");
      script.ExpectBox(++closed == 1 ? QMessageBox::No : QMessageBox::Yes);
      if (closed == 2) {
        timer->stop();
        ExpectLog(&log);
      }
      EXPECT_EQ(shown->close(), closed == 2);
      return;
    }
  });
  timer->start(0);
  Click("cmdOk");
  EXPECT_EQ(closed, 2);
  EXPECT_NE(log.find("Makro-Ausführung frühzeitig ABGEBROCHEN"), std::string::npos);
  EXPECT_EQ(log.find("x49.vas"), std::string::npos);
}

TEST_F(WholeWay, AFileDeletedBeforeStartIsAskedAbout) {
  Open();
  SetMacro({40001});
  Files().selectAll();
  std::remove((place.Path() + "serie/b.vas").c_str());
  script.Expect<QMessageBox>("QMessageBox", [](QMessageBox& box) {
    // Independent of the system's order for such buttons.
    const auto left = [&box](QMessageBox::StandardButton button) { return box.button(button)->x(); };
    EXPECT_LT(left(QMessageBox::Abort), left(QMessageBox::Retry));
    EXPECT_LT(left(QMessageBox::Retry), left(QMessageBox::Ignore));
    box.button(QMessageBox::Ignore)->click();
  });
  std::string log;
  ExpectLog(&log);
  window->move(70, 50);
  Click("cmdOk");
  EXPECT_EQ(window->pos(), QPoint(70, 50));  // the position chosen by the user
  EXPECT_NE(log.find("(Fehler-Nr. 53)"), std::string::npos);
}

TEST_F(WholeWay, AnErrorOfTheRunItselfLeavesNoHiddenWindow) {
  Open();
  SetMacro({40001});
  Files().selectAll();
  clock.fails = true;
  script.ExpectBox(QMessageBox::Ok);
  Click("cmdOk");
  EXPECT_TRUE(window->isVisible());
  for (const QWidget* shown : QApplication::topLevelWidgets()) {
    EXPECT_NE(std::string(shown->metaObject()->className()), "quiverion::frmShowProgress");
  }
  EXPECT_FALSE(TheSession().context.busy);
}

TEST_F(WholeWay, QuittingWhileABoxOfTheRunIsOpenEndsIt) {
  Open();
  SetMacro({40001});
  Files().selectAll();
  std::remove((place.Path() + "serie/b.vas").c_str());
  script.Expect<QMessageBox>("QMessageBox", [](QMessageBox&) { QCoreApplication::exit(); });
  Click("cmdOk");
  EXPECT_FALSE(TheSession().context.busy);
}

// The way from a run with errors to a second one with the files that failed.
TEST_F(WholeWay, TheTableOfTheRunLeadsToItsFilesAndItsLog) {
  place.Write("serie/a!.vas", "kaputt");
  place.Write("serie/z.vas", "kaputt");
  Open();
  SetMacro({40001, 40103});
  script.ExpectBox(QMessageBox::Ok);
  Trigger("mnuLastRun");  // there was no run yet
  Files().selectAll();
  std::string place1, place2;
  const auto selected = [](QDialog& log) {
    return FromQt(Find<QPlainTextEdit>(log, "RichTextBox").textCursor().block().text());
  };
  const auto open = [](QDialog& table, int row) {
    auto& view = Find<QTableView>(table, "tblRun");
    view.selectRow(row);
    QTest::keyClick(&view, Qt::Key_Return);
  };
  QDialog* log = nullptr;
  script.Expect<QDialog>("quiverion::frmShowLogFile", [&](QDialog& dialog) {
    log = &dialog;
    script.Expect<QDialog>("quiverion::frmRunTable", [&](QDialog& table) {
      Find<QCheckBox>(table, "chkOnlyErrors").click();
      EXPECT_EQ(Find<QTableView>(table, "tblRun").model()->rowCount(), 2);
      open(table, 1);
    });
    QTest::keyClick(&dialog, Qt::Key_F6);
    place1 = selected(dialog);
    Press(dialog, "cmdOk");
  });
  Click("cmdOk");
  EXPECT_EQ(place1, "Orginaldatei '" + place.At("serie/z.vas") + "' einladen... !!! FEHLER !!!");
  window->OpenDirectory(place.Path() + "leer");
  script.Expect<QDialog>("quiverion::frmRunTable", [&](QDialog& table) {
    script.Expect<QDialog>("quiverion::frmShowLogFile", [&](QDialog& dialog) {
      place2 = selected(dialog);
      QTest::keyClick(&dialog, Qt::Key_F6);
    });
    open(table, 0);
    Find<QCheckBox>(table, "chkOnlyErrors").click();
    Press(table, "cmdSelect");
  });
  QTest::keyClick(window.get(), Qt::Key_F6);
  EXPECT_EQ(place2, "Orginaldatei '" + place.At("serie/a!.vas") + "' einladen... !!! FEHLER !!!");
  EXPECT_EQ(Directory().Path(), place.Path() + "serie");
  EXPECT_EQ(Files().SelectedNames(), (std::vector<std::string>{"a!.vas", "z.vas"}));
}

// A log window on its own, with the text of a run.
class LogWindow : public MainWindow {
 protected:
  LogWindow() {
    RunLog run;
    run.Attach(log);
    for (const char* piece : {"Titel\r\n", "Laden... ", "fertig\r\n", "    klein\r\n", "!!! FEHLER !!!\r\n"}) {
      run.WriteLogLine(piece);
    }
  }
  // The bytes of the printout without its time.
  std::string Printed(frmShowLogFile& shown, const char* name) {
    QPrinter printer;
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(ToQt(place.Path() + name));
    shown.PrintTo(printer);
    std::string bytes = place.Read(name);
    const std::size_t time = bytes.find("/CreationDate");
    return bytes.erase(time, bytes.find('\n', time) - time);
  }

  LogText log;
  ScriptedUi ui;
};

std::string FormatsIn(const frmShowLogFile& shown) {
  QTextDocument* const document = Find<QPlainTextEdit>(shown, "RichTextBox").document();
  std::string formats;
  for (QTextBlock block = document->begin(); block.isValid(); block = block.next()) {
    for (auto piece = block.begin(); !piece.atEnd(); ++piece) {
      const QTextCharFormat format = piece.fragment().charFormat();
      formats += FromQt(piece.fragment().text()) + "=" + FromQt(format.foreground().color().name()) +
                 (format.fontWeight() == QFont::Bold ? " bold" : "") + (format.fontItalic() ? " italic " : " ") +
                 std::to_string(static_cast<int>(format.fontPointSize())) + "|";
    }
  }
  return formats;
}

TEST_F(LogWindow, ShowsEveryPieceInItsFormat) {
  const frmShowLogFile shown(log, place.Path() + "Log.rtf", *files, ui);
  EXPECT_EQ(FormatsIn(shown),
            "Titel=#000000 bold 10|Laden... =#000000 bold 10|fertig=#00c800 10|    klein=#00c800 italic 8|"
            "!!! FEHLER !!!=#c80000 10|");
}

// A log that stayed white and black was glaring on a dark desktop; one that is light on paper cannot be read.
TEST_F(LogWindow, FollowsThePaletteOnTheScreenButNotOnPaper) {
  frmShowLogFile shown(log, place.Path() + "Log.rtf", *files, ui);
  shown.show();
  QTextCursor cursor(Find<QPlainTextEdit>(shown, "RichTextBox").document());
  cursor.setPosition(7);
  cursor.setPosition(12, QTextCursor::KeepAnchor);
  Find<QPlainTextEdit>(shown, "RichTextBox").setTextCursor(cursor);
  const std::string onPaper = Printed(shown, "light.pdf");
  const DarkPalette dark;
  EXPECT_EQ(FormatsIn(shown),
            "Titel=#f0f0f0 bold 10|Laden... =#f0f0f0 bold 10|fertig=#5adc5a 10|    klein=#5adc5a italic 8|"
            "!!! FEHLER !!!=#ff7878 10|");
  EXPECT_EQ(FromQt(Find<QPlainTextEdit>(shown, "RichTextBox").textCursor().selectedText()), "aden.");
  EXPECT_EQ(Printed(shown, "dark.pdf"), onPaper);
}

TEST_F(LogWindow, FindsTextsAndErrors) {
  RunLog run;
  run.Attach(log);
  for (const char* piece :
       {"Laden von '!!! FEHLER !!!.vas'... ", "fertig\r\n", "!!! WARNUNG !!!\r\n", "    Klein\r\n"}) {
    run.WriteLogLine(piece);
  }
  frmShowLogFile shown(log, place.Path() + "Log.rtf", *files, ui);
  shown.show();
  shown.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&shown));
  auto& text = Find<QPlainTextEdit>(shown, "RichTextBox");
  const auto line = [&] { return text.textCursor().blockNumber(); };
  std::vector<int> lines;
  for (int k = 0; k < 3; ++k) {
    QTest::keyClick(&shown, Qt::Key_F8);
    lines.push_back(line());
  }
  EXPECT_EQ(lines, (std::vector{3, 5, 3})) << "a name is no error; after the last comes the first";
  QTest::keyClick(&shown, Qt::Key_F, Qt::ControlModifier);
  auto& typed = Find<QLineEdit>(shown, "txtFind");
  EXPECT_EQ(FromQt(typed.text()), "!!! FEHLER !!!");
  QTest::keyClicks(&typed, "klein");
  lines = {line()};
  const std::pair<Qt::Key, Qt::KeyboardModifiers> keys[] = {
      {Qt::Key_Return, {}}, {Qt::Key_F3, {}}, {Qt::Key_F3, Qt::ShiftModifier}, {Qt::Key_F3, Qt::ShiftModifier}};
  for (const auto& [key, modifiers] : keys) {
    QTest::keyClick(&typed, key, modifiers);
    lines.push_back(line());
  }
  EXPECT_EQ(lines, (std::vector{6, 2, 6, 2, 6}));
  EXPECT_FALSE(Find<QLabel>(shown, "lblNotFound").isVisible());
  QTest::keyClicks(&typed, "er");
  EXPECT_TRUE(Find<QLabel>(shown, "lblNotFound").isVisible());
  QTest::keyClick(&typed, Qt::Key_Escape);
  EXPECT_TRUE(shown.isVisible() && text.hasFocus() && !typed.isVisible());
}

TEST_F(LogWindow, PrintsWhatIsSelectedOrEverything) {
  frmShowLogFile shown(log, place.Path() + "Log.rtf", *files, ui);
  const std::size_t whole = Printed(shown, "a.pdf").size();
  QTextCursor cursor(Find<QPlainTextEdit>(shown, "RichTextBox").document());
  cursor.select(QTextCursor::WordUnderCursor);
  Find<QPlainTextEdit>(shown, "RichTextBox").setTextCursor(cursor);
  const std::size_t word = Printed(shown, "b.pdf").size();
  EXPECT_TRUE(place.Read("a.pdf").starts_with("%PDF"));
  EXPECT_LT(word, whole);
  EXPECT_GT(word, 0u);
}

}  // namespace
}  // namespace quiverion::test
