// The windows for files of other programs, by mouse and keys. Files are read and written in another thread, as in the
// program.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QTableView>

#include "dialogs/exchange/frmExport.h"
#include "dialogs/exchange/frmImport.h"
#include "generator/foreign_files.h"
#include "generator/sample_files.h"
#include "support/program.h"
#include "support/test_session.h"
#include "windows/modal_script.h"

namespace quiverion::test {
namespace {

template <class Window>
class ExchangeWindow : public testing::Test {
 protected:
  Window& Open() {
    window = std::make_unique<Window>(ExchangeServices{*files, clock, ui});
    window->show();
    window->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
    return *window;
  }
  void Foreign(const std::string& name, std::string_view sample, int index = 0) {
    place.Write(name, samples::ForeignSampleOf(sample).bytes(
                          samples::MakeSampleField({.index = index, .columns = 7, .rows = 5})));
  }
  QTableView& Table() { return Find<QTableView>(*window, "tblFiles"); }
  std::string Cell(int row, int column) { return FromQt(Table().model()->index(row, column).data().toString()); }

  // The table, a line per file.
  std::string Rows() {
    std::string text;
    for (int row = 0; row < Table().model()->rowCount(); ++row) {
      for (int k = 0; k < Table().model()->columnCount(); ++k) text += (k > 0 ? " | " : "") + Cell(row, k);
      text += "\n";
    }
    return text;
  }
  void Mark(int row) {
    QTest::mouseClick(Table().viewport(), Qt::LeftButton, {},
                      Table().visualRect(Table().model()->index(row, 0)).center());
  }
  bool WaitUntilFree() {
    return QTest::qWaitFor(
        [&] { return Find<QPushButton>(*window, "cmdCancel").text() == QStringLiteral("S&chließen"); }, 20000);
  }

  cli::Workplace place;
  std::unique_ptr<FileSystem> files = MakeSystemFileSystem();
  SystemClock clock;
  ScriptedUi ui;
  std::unique_ptr<Window> window;
};

class ImportWindow : public ExchangeWindow<frmImport> {
 protected:
  void LayFiles() {
    Foreign("q/B1.txt", "davis8.txt");
    Foreign("q/L1.vec", "insight.vec");
    Foreign("q/o.txt", "openpiv5.txt");
    Foreign("q/p.mat", "pivlab.mat");
    place.Write("q/.versteckt", "");
    place.Write("q/zonen.dat",
                "VARIABLES = x y u v\nZONE I=2 J=2\n0 0 1 2\n1 0 1 2\n0 1 1 2\n1 1 1 2\n"
                "ZONE I=2 J=2\n0 0 3 2\n1 0 3 2\n0 1 3 2\n1 1 3 2\n");
    place.Write("q/schlecht.csv", "x,y,u,v\n0,0,1,2\n1,0,1\n");
  }
  void Choose(const char* box, int index) {
    auto& combo = Find<QComboBox>(*window, box);
    combo.setFocus();
    QTest::keyClick(&combo, Qt::Key_Home);
    for (int k = 0; k < index; ++k) QTest::keyClick(&combo, Qt::Key_Down);
  }
  void TypeUnit(const char* box, const char* text) {
    auto& edit = *Find<QComboBox>(*window, box).lineEdit();
    edit.setFocus();
    edit.selectAll();
    QTest::keyClicks(&edit, text);
    QTest::keyClick(&edit, Qt::Key_Tab);
  }
};

TEST_F(ImportWindow, ShowsWhatEachFileIsTakenForAndWhatWouldBecomeOfIt) {
  LayFiles();
  place.Write("q/VAS/L1.vas", "alt");
  place.Write("q/VAS/zonen_0002.vas", "alt");
  Foreign("q2/o.csv", "table.csv");
  Open().AddPaths({place.At("q"), place.At("q2/o.csv"), place.At("q/fehlt.txt")});
  ASSERT_TRUE(WaitUntilFree());
  EXPECT_EQ(Find<QLineEdit>(*window, "txtDirectory").text(), PathToQt(place.At("q/VAS")));
  EXPECT_EQ(FromQt(Find<QLabel>(*window, "lblSummary").text()), "8 Dateien, 3 mit Problemen");
  cli::ExpectApproved(place, "import_table.txt", Rows());
  QApplication::processEvents();  // the layout follows its texts
  ExpectReadable(*window);
}

TEST_F(ImportWindow, ChoicesAreForTheMarkedFilesOrForAll) {
  LayFiles();
  Open().AddPaths({place.At("q/L1.vec"), place.At("q/o.txt"), place.At("q/zonen.dat")});
  ASSERT_TRUE(WaitUntilFree());
  Mark(1);
  EXPECT_EQ(FromQt(Find<QGroupBox>(*window, "fraOptions").title()), "Angaben für die markierte Datei");
  Choose("cboY", 2);
  TypeUnit("cboLength", "0,5");
  TypeUnit("cboVelocity", "px");
  ASSERT_TRUE(WaitUntilFree());
  EXPECT_EQ(Cell(1, ImportList::yAxis), "unten");
  EXPECT_EQ(Cell(1, ImportList::units), "Einheiten zu 0.5 mm; 'px' (als m/s)");
  EXPECT_EQ(Cell(0, ImportList::yAxis), "oben (angenommen)");
  Table().clearSelection();
  Choose("cboZeros", 1);
  TypeUnit("cboLength", "m");
  ASSERT_TRUE(WaitUntilFree());
  for (const int row : {0, 1, 2}) {
    EXPECT_EQ(Cell(row, ImportList::units).substr(0, 3), "m; ") << row;
    EXPECT_EQ(Cell(row, ImportList::statuses).find("(0, 0)"), std::string::npos) << row;
  }
  EXPECT_EQ(Cell(1, ImportList::yAxis), "unten") << "what has not been changed stays";
  EXPECT_EQ(Cell(2, ImportList::yAxis), "oben (angenommen)");
  // A format that does not fit, and back again.
  Mark(0);
  Choose("cboFormat", 1);
  ASSERT_TRUE(WaitUntilFree());
  EXPECT_TRUE(Cell(0, ImportList::result).starts_with("Byte ")) << Cell(0, ImportList::result);
  Choose("cboFormat", 0);
  ASSERT_TRUE(WaitUntilFree());
  EXPECT_EQ(Cell(0, ImportList::result), "neu: L1.vas");
}

TEST_F(ImportWindow, ImportsAndAsksBeforeItReplaces) {
  LayFiles();
  place.Write("q/VAS/L1.vas", "alt");
  Open().AddPaths({place.At("q")});
  ASSERT_TRUE(WaitUntilFree());
  ui.answers = {MessageAnswer::no, MessageAnswer::yes};
  Press(*window, "cmdImport");
  EXPECT_EQ(place.Read("q/VAS/L1.vas"), "alt");
  Press(*window, "cmdImport");
  ASSERT_TRUE(WaitUntilFree());
  EXPECT_EQ(window->ImportedDirectory(), place.At("q/VAS"));
  EXPECT_EQ(window->ImportedNames(),
            (std::vector<std::string>{"B1.vas", "L1.vas", "o.vas", "p.vas", "zonen_0001.vas", "zonen_0002.vas"}));
  for (const std::string& name : window->ImportedNames()) EXPECT_TRUE(place.Read("q/VAS/" + name).size() > 500);
  EXPECT_EQ(Cell(0, ImportList::result), "importiert");
  EXPECT_EQ(FromQt(Find<QLabel>(*window, "lblSummary").text()), "6 Dateien, 5 importiert, 1 mit Problemen");
  EXPECT_FALSE(Find<QPushButton>(*window, "cmdImport").isEnabled());
  cli::ExpectApproved(place, "import_boxes.txt", ui.TakeBoxes());
  // A directory that cannot be made: every file has the reason, nothing is left behind.
  place.Write("datei", "");
  window->SetDirectory(place.At("datei/VAS"));
  QTest::keyClick(window.get(), Qt::Key_F5);
  ASSERT_TRUE(WaitUntilFree());
  Press(*window, "cmdImport");
  ASSERT_TRUE(WaitUntilFree());
  EXPECT_NE(Cell(0, ImportList::result).find("Pfad"), std::string::npos) << Cell(0, ImportList::result);
  Mark(0);
  QTest::keyClick(&Table(), Qt::Key_Delete);
  EXPECT_EQ(Table().model()->rowCount(), 5);
}

TEST_F(ImportWindow, EndsAfterTheCurrentFileWhenItIsCancelled) {
  constexpr int count = 300;
  for (int k = 0; k < count; ++k) Foreign("q/B" + std::to_string(1000 + k) + ".txt", "davis8.txt", k);
  Open().AddPaths({place.At("q")});
  Press(*window, "cmdCancel");
  ASSERT_TRUE(WaitUntilFree());
  EXPECT_TRUE(window->isVisible());
  EXPECT_EQ(Cell(count - 1, ImportList::result), "nicht gelesen");
  QTest::keyClick(window.get(), Qt::Key_F5);
  ASSERT_TRUE(WaitUntilFree());
  Press(*window, "cmdImport");
  ASSERT_TRUE(QTest::qWaitFor([&] { return Cell(0, ImportList::result) == "importiert"; }));
  QTest::keyClick(window.get(), Qt::Key_Escape);
  ASSERT_TRUE(WaitUntilFree());
  EXPECT_TRUE(window->isVisible()) << "nobody misses what has become of the files";
  std::size_t imported = 0;
  for (int row = 0; row < count; ++row) imported += Cell(row, ImportList::result) == "importiert" ? 1 : 0;
  EXPECT_EQ(window->ImportedNames().size(), imported);
  EXPECT_EQ(place.Files().size(), count + imported);
  QTest::keyClick(window.get(), Qt::Key_Escape);
  EXPECT_FALSE(window->isVisible());
}

class ExportWindow : public ExchangeWindow<frmExport> {
 protected:
  ExportWindow() {
    for (int k = 0; k < 3; ++k) {
      place.Write("s/f" + std::to_string(k) + ".vas",
                  samples::VasBytes(samples::MakeSampleField({.index = k, .columns = 7, .rows = 5})));
    }
  }
  void ChooseKind(int index) {
    auto& box = Find<QComboBox>(*window, "cboKind");
    box.setFocus();
    QTest::keyClick(&box, Qt::Key_Home);
    for (int k = 0; k < index; ++k) QTest::keyClick(&box, Qt::Key_Down);
  }
  std::string State() { return FromQt(Find<QLabel>(*window, "lblState").text()); }
  void Export() {
    Press(*window, "cmdExport");
    ASSERT_TRUE(WaitUntilFree());
  }
};

TEST_F(ExportWindow, WritesAFileForEachFieldOrOneForTheSeries) {
  Open().AddPaths({place.At("s")});
  ExpectReadable(*window);
  EXPECT_EQ(Rows(), "f0.vas | neu: f0.nc\nf1.vas | neu: f1.nc\nf2.vas | neu: f2.nc\n");
  Export();
  EXPECT_EQ(State(), "3 von 3 Feldern geschrieben");
  // The index of a series, with times.
  window->SetDirectory(place.At("vtk"));
  ChooseKind(1);
  Find<QCheckBox>(*window, "chkSeries").click();
  Type(*window, "txtTimeStep", "0,25");
  Export();
  EXPECT_NE(place.Read("vtk/Serie.pvd").find("timestep=\"0.5\" part=\"0\" file=\"f2.vti\""), std::string::npos);
  ChooseKind(2);
  Type(*window, "txtSeries", "alle");
  Export();
  EXPECT_EQ(Cell(2, ExportList::result), "geschrieben: alle.tec");
  EXPECT_NE(place.Read("vtk/alle.tec").find("SOLUTIONTIME=0.5"), std::string::npos);
  ChooseKind(3);  // a MAT file is of one field
  EXPECT_FALSE(Find<QCheckBox>(*window, "chkSeries").isEnabled());
  EXPECT_EQ(Cell(2, ExportList::result), "neu: f2.mat");
  ASSERT_TRUE(ui.messages.empty());
  ChooseKind(1);
  ui.answers = {MessageAnswer::no};
  Press(*window, "cmdExport");
  cli::ExpectApproved(place, "export_boxes.txt", ui.TakeBoxes());
}

TEST_F(ExportWindow, SaysWhatIsWrongAndWritesNoSeriesWithAGap) {
  place.Write("s/f1b.vas", "kaputt");
  place.Write("t/f0.vas", samples::VasBytes(samples::MakeSampleField({.columns = 7, .rows = 5})));
  Open().AddPaths({place.At("s")});
  const std::size_t before = place.Files().size();
  Find<QCheckBox>(*window, "chkSeries").click();
  Export();
  EXPECT_EQ(State(), "0 von 4 Feldern geschrieben, 1 mit Problemen");
  EXPECT_EQ(place.Files().size(), before);
  Find<QCheckBox>(*window, "chkSeries").click();
  Export();
  EXPECT_EQ(State(), "3 von 4 Feldern geschrieben, 1 mit Problemen");
  EXPECT_EQ(place.Files().size(), before + 3);
  window->AddPaths({place.At("t/f0.vas")});
  Press(*window, "cmdExport");
  Type(*window, "txtTimeStep", "0");
  Find<QCheckBox>(*window, "chkSeries").click();
  Press(*window, "cmdExport");
  Type(*window, "txtTimeStep", "1");
  Type(*window, "txtSeries", "x/y.nc");
  Press(*window, "cmdExport");
  std::string said;
  for (const Message& box : ui.messages) said += box.text + "\n";
  EXPECT_EQ(said,
            "Zwei Dateien haben denselben Namen:\r\n'f0.vas' und 'f0.vas'\n"
            "Die Zeit zwischen zwei Feldern muss größer als 0 sein!\n"
            "Der Name der Serie darf kein Verzeichnis enthalten!\n");
}

}  // namespace
}  // namespace quiverion::test
