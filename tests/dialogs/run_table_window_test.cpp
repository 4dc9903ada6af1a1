#include <gtest/gtest.h>

#include <QCheckBox>
#include <QClipboard>
#include <QHeaderView>
#include <QTableView>

#include "dialogs/frmRunTable.h"
#include "support/test_session.h"
#include "windows/modal_script.h"

namespace quiverion::test {
namespace {

class RunTableWindow : public testing::Test {
 protected:
  RunTableWindow() {
    const auto add = [this](const char* name, FileResult result, int errors, std::int64_t filled) -> FileRow& {
      FileRow& row = rows.emplace_back();
      row.name = name;
      row.result = result;
      row.errors = errors;
      row.filled = filled;
      return row;
    };
    add("c.vas", FileResult::done, 0, 100).validBefore = 20;
    add("B<b>.vas", FileResult::failed, 2, 0).message = "a;b & <i>";
    add("a.vas", FileResult::warning, 1, 7).validBefore = 9;
    add("d.vas", FileResult::notRun, 0, 0);
  }

  frmRunTable& Open() {
    window = std::make_unique<frmRunTable>(
        RunTableServices{.rows = rows,
                         .directory = "/serie/",
                         .decimalSeparator = ',',
                         .files = files,
                         .messages = ui,
                         .showField = [this](const FileRow& row) { done += "field " + row.name + "\n"; },
                         .showLog = [this](const FileRow& row) { done += "log " + row.name + "\n"; },
                         .select =
                             [this](const std::vector<std::string>& names) {
                               for (const std::string& name : names) done += "select " + name + "\n";
                             }});
    window->show();
    window->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
    return *window;
  }
  QTableView& Table() { return Find<QTableView>(*window, "tblRun"); }

  std::string Names() {
    std::string names;
    for (int row = 0; row < Table().model()->rowCount(); ++row) {
      names += FromQt(Table().model()->index(row, 0).data().toString().left(1));
    }
    return names;
  }

  void ClickHeader(int column) {
    QHeaderView& header = *Table().horizontalHeader();
    QTest::mouseClick(header.viewport(), Qt::LeftButton, {},
                      {header.sectionViewportPosition(column) + header.sectionSize(column) / 2, header.height() / 2});
  }

  std::vector<FileRow> rows;
  MemoryFileSystem files;
  ScriptedUi ui;
  std::string done;
  std::unique_ptr<frmRunTable> window;
};

TEST_F(RunTableWindow, SortsAndFilters) {
  Open();
  ExpectReadable(*window);
  EXPECT_EQ(Names(), "cBad");
  const std::pair<int, const char*> clicks[] = {{0, "aBcd"}, {0, "dcBa"}, {0, "cBad"}, {1, "caBd"},
                                                {2, "cdaB"}, {4, "Bdac"}, {7, "Bdac"}, {7, "caBd"}};
  for (const auto& [column, names] : clicks) {
    ClickHeader(column);
    EXPECT_EQ(Names(), names) << column;
  }
  Find<QCheckBox>(*window, "chkOnlyErrors").click();
  EXPECT_EQ(Names(), "aB");
  EXPECT_EQ(FromQt(Find<QLabel>(*window, "lblSummary").text()), "4 Dateien, 2 mit Fehlern");
  const QString toolTip = Table().model()->index(1, 3).data(Qt::ToolTipRole).toString();
  EXPECT_EQ(FromQt(toolTip), "<p>a;b &amp; &lt;i&gt;</p>") << "names and messages are no markup";
}

TEST_F(RunTableWindow, OpensSelectsCopiesAndSavesWhatIsShown) {
  Open();
  for (const int row : {0, 1}) {
    const QPoint centre = Table().visualRect(Table().model()->index(row, 0)).center();
    QTest::mouseClick(Table().viewport(), Qt::LeftButton, {}, centre);
    QTest::mouseDClick(Table().viewport(), Qt::LeftButton, {}, centre);
  }
  EXPECT_EQ(std::exchange(done, {}), "field c.vas\nlog B<b>.vas\n");
  QTest::keyClick(&Table(), Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(FromQt(QGuiApplication::clipboard()->text()),
            "Datei\tErgebnis\tFehler\tErste Meldung\tGültig vorher\tGültig nachher\tVerworfen\tErgänzt\tWirbel\t"
            "Sekunden\nB<b>.vas\tFehler\t2\ta;b & <i>\t\t\t\t\t\t0\n");
  ClickHeader(0);
  Find<QCheckBox>(*window, "chkOnlyErrors").click();
  ModalScript script;
  script.ExpectFile("/serie/neu");
  Press(*window, "cmdSave");
  EXPECT_TRUE(files.files["/serie/neu.csv"].ends_with(
      "Sekunden\r\na.vas;Warnung;1;;9;;0;7;;0\r\nB<b>.vas;Fehler;2;\"a;b & <i>\";;;;;;0\r\n"))
      << files.files["/serie/neu.csv"];
  files.faults.open = ErrorNumber::pathAccess;
  script.ExpectFile("/serie/nie");
  Press(*window, "cmdSave");
  ASSERT_EQ(ui.messages.size(), 1u);
  EXPECT_EQ(ui.messages[0].title, "Tabelle speichern");
  Press(*window, "cmdSelect");
  EXPECT_EQ(done, "select a.vas\nselect B<b>.vas\n");
  EXPECT_FALSE(window->isVisible());
}

}  // namespace
}  // namespace quiverion::test
