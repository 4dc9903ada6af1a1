// The status bar of the main window: what Start would do, and the list behind it. Undo, copies and directories by keys.
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QHelpEvent>
#include <QStatusBar>
#include <QTableView>
#include <QToolTip>
#include <filesystem>

#include "app/forecast_button.h"
#include "support/commands.h"
#include "window_fixture.h"

namespace quiverion::test {
namespace {

class Forecasts : public MainWindow {
 protected:
  // Selection and findings as soon as they are known.
  std::string Said() {
    QTest::qWait(30);
    auto& button = Get<ForecastButton>("cmdForecast");
    EXPECT_TRUE(QTest::qWaitFor([&] { return button.text() != "wird geprüft ..."; }));
    QTest::qWait(30);
    return FromQt(Get<QLabel>("lblSelection").text() + "|" + button.text());
  }
  // After a dialog, keys reach the window only when it is active again.
  void Activate() {
    window->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
  }
  void Use(MacroEventList macro) {
    TheSession().macro = std::move(macro);
    window->ShowMacro(-1);
  }
  static MacroEvent Save(const char* prefix, const char* postfix) {
    return Command("evtSaveVas", {{"Prefix", std::string(prefix)}, {"Postfix", std::string(postfix)}});
  }
  std::string Macro() {
    std::string ids;
    for (const MacroEvent& event : TheSession().macro) ids += std::to_string(event.EventId()) + " ";
    return ids;
  }
};

TEST_F(Forecasts, FollowSelectionMacroAndFiles) {
  Open();
  EXPECT_EQ(Said(), "0 von 3 Dateien gewählt|");
  Files().SelectNames({"a.dat", "b.vas"});
  EXPECT_EQ(Said(), "2 von 3 Dateien gewählt|kein Befehl im Makro");
  Use({Save("", "")});
  EXPECT_EQ(Said(), "2 von 3 Dateien gewählt|ersetzt 1 Original, 1 neues Ergebnis");
  place.Write("serie/a.vas", "");
  QTest::keyClick(window.get(), Qt::Key_F5);
  EXPECT_EQ(Said(), "2 von 4 Dateien gewählt|ersetzt 1 Original, ersetzt 1 Ergebnis");
  Use({Save("<b>", ""), Command("evtCollectStatistics", {{"FileName", place.At("serie/notes.txt")}}), MacroEvent(7)});
  EXPECT_EQ(Said(),
            "2 von 4 Dateien gewählt|Kollektion notes.txt ist nicht lesbar: COL-Datei ist nicht von QuiverionSeries!, "
            "Befehl 3 ist unbekannt, 2 neue Ergebnisse");
  std::filesystem::remove_all(place.Path() + "serie");
  Use({Save("", "_g")});
  EXPECT_EQ(Said(), "2 von 4 Dateien gewählt|2 Dateien fehlen");
}

TEST_F(Forecasts, AClickShowsThePlan) {
  Open();
  Files().SelectNames({"a.dat", "b.vas"});
  Use({Save("", "")});
  std::string lines;
  const auto look = [&](QDialog& plan) {
    ExpectReadable(plan);
    const auto& table = Find<QTableView>(plan, "tblPlan");
    const auto copy = [&] {
      Press(plan, "cmdCopy");
      lines += FromQt(QGuiApplication::clipboard()->text()) + "-\n";
    };
    copy();
    Find<QComboBox>(plan, "cboShow").setCurrentIndex(1);
    EXPECT_EQ(table.model()->rowCount(), 1);
    copy();
    Press(plan, "cmdOk");
  };
  script.Expect<QDialog>("quiverion::frmRunPlan", look);
  Said();
  QTest::mouseClick(&Get<ForecastButton>("cmdForecast"), Qt::LeftButton);
  script.Expect<QDialog>("quiverion::frmRunPlan", look);
  Activate();
  Use({Save("", "")});
  QTest::keyClick(window.get(), Qt::Key_F7);  // the plan is not known yet
  EXPECT_EQ(Said().substr(0, 2), "2 ");
  EXPECT_TRUE(QTest::qWaitFor([&] { return std::ranges::count(lines, '-') >= 4; }));
  const std::string head = "Datei\tWas\tZiel oder Quelle\tBefehl\tHinweis\n";
  const std::string replaced = "b.vas\tersetzt\tb.vas\t1. Speichern unter (*.vas)\tOriginal\n-\n";
  const std::string once = head + "a.dat\tneu\ta.vas\t1. Speichern unter (*.vas)\t\n" + replaced + head + replaced;
  EXPECT_EQ(lines, once + once);
}

TEST_F(Forecasts, ResultsCanBeHidden) {
  Open();
  for (const char* name : {"a_g.vas", "b_g.vas", "x_g.vas"}) place.Write(std::string("serie/") + name, "");
  Use({Save("", "_g")});
  QTest::keyClick(window.get(), Qt::Key_F5);
  Files().SelectNames({"b.vas", "b_g.vas"});
  auto& hide = Get<QCheckBox>("chkHideResults");
  hide.click();
  EXPECT_EQ(Lines(Files()), "a.dat|b.vas|C.VEC|x_g.vas|");
  EXPECT_EQ(Said(), "1 von 4 Dateien gewählt|ersetzt 1 Ergebnis");
  EXPECT_EQ(FromQt(hide.text()), "Ohne Ergebnisse (2)");
  Use({Save("", "_h")});
  EXPECT_EQ(Lines(Files()), "a.dat|a_g.vas|b.vas|b_g.vas|C.VEC|x_g.vas|") << "they are of another macro now";
  Use({Save("", "_g")});
  window->OpenPaths({place.At("serie/b_g.vas")});
  EXPECT_FALSE(hide.isChecked()) << "a hidden file is asked for";
  EXPECT_EQ(Files().SelectedNames(), std::vector<std::string>{"b_g.vas"});
}

TEST_F(Forecasts, MacroCommandsAreCopiedAndEditsUndone) {
  Open();
  SetMacro({40001, 40101, 40102, 40103});
  auto& list = MacroList();
  list.setFocus();
  list.setCurrentRow(1);
  QTest::keyClick(&list, Qt::Key_Down, Qt::ShiftModifier);
  QTest::keyClick(&list, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QGuiApplication::clipboard()->text(),
            "[\n  {\"EventId\": \"evtRect3x3\"},\n  {\"EventId\": \"evtRect5x5\"}\n]\n");
  QTest::keyClick(&list, Qt::Key_Down, Qt::AltModifier);
  EXPECT_EQ(Macro(), "40001 40103 40101 40102 ");
  EXPECT_EQ(list.selectedItems().size(), 2);
  QTest::keyClick(&list, Qt::Key_Delete);
  list.setCurrentRow(0);
  QTest::keyClick(&list, Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(Macro(), "40101 40102 40001 40103 ");
  EXPECT_EQ(SelectedLine(), -1);
  QGuiApplication::clipboard()->setText("[{\"EventId\": \"evtMirror\"}]");
  script.ExpectBox(QMessageBox::Ok);
  QTest::keyClick(&list, Qt::Key_V, Qt::ControlModifier);
  Activate();
  Files().setFocus();
  for (const char* expected : {"40001 40103 ", "40001 40103 40101 40102 ", "40001 40101 40102 40103 "}) {
    QTest::keyClick(window.get(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Macro(), expected);
  }
  EXPECT_FALSE(window->findChild<QAction*>("mnuUndo")->isEnabled());
  EXPECT_EQ(window->findChild<QAction*>("mnuRedo")->text(), "&Wiederholen: Befehl verschieben");
  for (int k = 0; k < 3; ++k) QTest::keyClick(window.get(), Qt::Key_Y, Qt::ControlModifier);
  EXPECT_EQ(Macro(), "40101 40102 40001 40103 ");
  EXPECT_EQ(list.count(), 4);
}

TEST_F(Forecasts, ParametersAreSeenInTheList) {
  Open();
  Use({Command("evtInsertComment", {{"Comment", std::string("<b>\nfett</b>")}}), MacroEvent(40001), Save("E\\", "_g")});
  auto& brief = Get<QLabel>("lblParameters");
  MacroList().setCurrentRow(2);
  EXPECT_EQ(brief.text(), "E\\ ... _g");
  MacroList().setCurrentRow(0);
  EXPECT_EQ(brief.text(), "<b> fett</b>");
  MacroList().selectAll();
  EXPECT_EQ(brief.text(), "");
  const QPoint at = MacroList().visualItemRect(MacroList().item(0)).center();
  QHelpEvent help(QEvent::ToolTip, at, MacroList().viewport()->mapToGlobal(at));
  QApplication::sendEvent(MacroList().viewport(), &help);
  EXPECT_TRUE(QToolTip::text().contains("Kommentar: &lt;b&gt;")) << FromQt(QToolTip::text());
  QToolTip::hideText();
}

TEST_F(Forecasts, DirectoriesAreTyped) {
  Open("leer");
  const auto type = [this](const std::string& path) {
    script.Expect<QDialog>("quiverion::frmOpenDirectory", [path](QDialog& dialog) {
      ExpectReadable(dialog);
      Type(dialog, "txtPath", path.c_str());
      Press(dialog, "cmdOk");
    });
    Activate();
    QTest::keyClick(window.get(), Qt::Key_L, Qt::ControlModifier);
    return FromQt(PathToQt(Directory().Path()));
  };
  const std::string series = place.Path() + "serie";
  EXPECT_EQ(type("../serie"), series);
  EXPECT_EQ(type("\"" + place.Path() + "leer\" "), place.Path() + "leer");
  EXPECT_EQ(type(place.At("serie/b.vas")), series);
  EXPECT_EQ(Files().SelectedNames(), std::vector<std::string>{"b.vas"});
  script.said.clear();
  for (const std::string& bad : {place.Path() + "nein", std::string(4000, 'x')}) {
    script.Expect<QDialog>("quiverion::frmOpenDirectory", [bad](QDialog& dialog) {
      Find<QLineEdit>(dialog, "txtPath").clear();
      QTest::keyClicks(&Find<QLineEdit>(dialog, "txtPath"), ToQt(bad));
      Press(dialog, "cmdOk");
    });
    script.ExpectBox(QMessageBox::Ok);
    Activate();
    QTest::keyClick(window.get(), Qt::Key_L, Qt::ControlModifier);
    EXPECT_EQ(FromQt(PathToQt(Directory().Path())), series);
    EXPECT_NE(script.said.find("kann nicht gelesen werden!"), std::string::npos);
    script.said.clear();  // the reason is the system's
  }
}

}  // namespace
}  // namespace quiverion::test
