#include <gtest/gtest.h>

#include <QComboBox>
#include <QSlider>
#include <QSpinBox>
#include <QTableView>
#include <QTextEdit>
#include <algorithm>
#include <filesystem>
#include <map>

#include "generator/sample_files.h"
#include "platform/text/numbers.h"
#include "support/commands.h"
#include "support/workplace.h"
#include "view/preview/frmPreview.h"
#include "view/preview/histogram_view.h"
#include "view/preview/sample_strip.h"
#include "windows/modal_script.h"

namespace quiverion::test {
namespace {

MacroEvent Search(const char* largest) {
  return Command("evtFaultVectors", {{"ChkAbsInterval", 1}, {"TxtAbsIntMax", std::string(largest)}});
}

class PreviewWindow : public testing::Test {
 protected:
  PreviewWindow() {
    for (int k = 0; k < 6; ++k) {
      const samples::SampleOptions options{.index = k, .columns = 20, .rows = 15, .outlierShare = k == 4 ? 0.4 : 0.05};
      place.Write("s/f" + std::to_string(k) + ".vas", samples::VasBytes(samples::MakeSampleField(options)));
    }
    before = Tree();
    window.resize(1200, 900);
    window.show();
    window.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    window.ShowFiles(place.Path() + "s/", {"f0.vas", "f1.vas", "f2.vas", "f3.vas", "f4.vas", "f5.vas"});
  }
  ~PreviewWindow() override { EXPECT_TRUE(Tree() == before) << "a preview changes no file, no date, no directory"; }

  std::map<std::string, std::filesystem::file_time_type> Tree() {
    std::map<std::string, std::filesystem::file_time_type> tree;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(place.Path() + "s")) {
      tree[entry.path().string()] = entry.last_write_time();
    }
    return tree;
  }

  QTableView& Table() { return Find<QTableView>(window, "tblSteps"); }
  QString Cell(int step, int column) { return Table().model()->index(step, column).data().toString(); }
  bool Await(const std::function<bool()>& condition) { return QTest::qWaitFor(condition, 10000); }
  FieldView& View() { return Find<FieldView>(window, "FieldView"); }
  int Step() { return Table().currentIndex().row(); }

  cli::Workplace place;
  std::map<std::string, std::filesystem::file_time_type> before;
  std::unique_ptr<FileSystem> files = MakeSystemFileSystem();
  SystemClock clock;
  BufferField buffer;
  frmPreview window{{*files, clock, '.', [] {}, [this]() -> const BufferField& { return buffer; }}};
};

TEST_F(PreviewWindow, ShowsEveryStepAndFollowsTheMacro) {
  MacroEventList macro = {Search("12"), Command("evtInterpolation"), Command("evtGauss3x3"),
                          Command("evtSaveVas", {{"Prefix", std::string("neu/")}}), Command("evtSaveVas")};
  window.ShowMacro(macro, -1);
  ASSERT_TRUE(Await([&] { return Cell(5, StepTable::files) == "1"; }));
  EXPECT_EQ(Step(), 5);
  EXPECT_EQ(Cell(1, StepTable::rejected).toInt(),
            Cell(0, StepTable::valid).toInt() - Cell(1, StepTable::valid).toInt());
  EXPECT_EQ(Cell(2, StepTable::filled).toInt(), Cell(2, StepTable::valid).toInt() - Cell(1, StepTable::valid).toInt());
  EXPECT_TRUE(Find<QTextEdit>(window, "txtStep").toPlainText().contains("ersetzt: "));
  ExpectReadable(window);

  View().setFocus();
  QTest::keyClick(&View(), Qt::Key_Up);
  ASSERT_TRUE(Await([&] { return Find<QTextEdit>(window, "txtStep").toPlainText().contains("neu: "); }));
  EXPECT_EQ(Step(), 4);
  Find<QSlider>(window, "sldStep").setValue(1);
  EXPECT_EQ(Step(), 1);
  EXPECT_TRUE(Find<QWidget>(window, "Histogram").isVisibleTo(&window) ||
              Await([&] { return Find<QWidget>(window, "Histogram").isVisible(); }));
  Table().setFocus();
  QTest::keyClick(&Table(), Qt::Key_Down);
  EXPECT_EQ(Find<QSlider>(window, "sldStep").value(), 2);

  const QString rejected = Cell(1, StepTable::rejected);
  macro[0] = Search("3");
  window.ShowMacro(macro, 2);
  ASSERT_TRUE(Await([&] { return Cell(1, StepTable::rejected) != rejected; }));
  EXPECT_EQ(Step(), 3);
  macro.erase(macro.begin() + 1);
  window.ShowMacro(macro, -1);
  ASSERT_TRUE(Await([&] { return Table().model()->rowCount() == 5 && Cell(2, StepTable::changed) != ""; }));

  // A draft is seen until it ends.
  window.ShowDraft(DraftCommand{0, true, Search("12")});
  ASSERT_TRUE(Await([&] { return Cell(1, StepTable::rejected) == rejected; }));
  window.ShowDraft(std::nullopt);
  ASSERT_TRUE(Await([&] { return Cell(1, StepTable::rejected) != rejected; }));
}

TEST_F(PreviewWindow, ComparesBeforeAndAfter) {
  window.ShowMacro({Command("evtGauss3x3")}, 0);
  const auto picture = [&] { return View().grab().toImage(); };
  ASSERT_TRUE(Await([&] { return Cell(1, StepTable::changed) != "" && View().HasField(); }));
  View().setFocus();
  const QImage after = picture();
  QTest::keyClick(&View(), Qt::Key_B);
  EXPECT_NE(picture(), after);
  QTest::keyClick(&View(), Qt::Key_B);
  EXPECT_EQ(picture(), after);
  QTest::keyClick(&View(), Qt::Key_D);
  ASSERT_TRUE(Await([&] { return picture() != after && View().HasField(); }));
  QTest::keyClick(&View(), Qt::Key_W);
  const QImage wiped = picture();
  EXPECT_NE(wiped, after);
  int line = 0;  // of the wipe: where the mouse changes its shape
  while (line < View().width() && View().cursor().shape() != Qt::SplitHCursor) {
    QTest::mouseMove(&View(), {++line, View().height() / 2});
  }
  ASSERT_LT(line, View().width());
  QTest::mousePress(&View(), Qt::LeftButton, {}, {line + 3, View().height() / 2});
  QTest::mouseMove(&View(), {line + 90, View().height() / 2});
  QTest::mouseRelease(&View(), Qt::LeftButton, {}, {line + 90, View().height() / 2});
  EXPECT_NE(picture(), wiped);
  QTest::keyClick(&View(), Qt::Key_N);
  auto& beside = Find<FieldView>(window, "FieldViewBefore");
  EXPECT_TRUE(beside.isVisible());
  View().SetView(std::nullopt);
  QWheelEvent wheel(QPointF(View().rect().center()), View().mapToGlobal(View().rect().center()), {}, {0, 120}, {}, {},
                    Qt::NoScrollPhase, false);
  QApplication::sendEvent(&View(), &wheel);
  EXPECT_TRUE(View().View().has_value());
  EXPECT_TRUE(beside.View() == View().View());
}

TEST_F(PreviewWindow, ALimitCanBeDraggedAndMovedByKeys) {
  MacroEventList macro = {Search("12")};
  QObject::connect(&window, &frmPreview::LimitMoved, [&](int command, const QString& key, const QString& text) {
    ASSERT_EQ(command, 0);
    macro[0].Set(FromQt(key), FromQt(text));
    window.ShowMacro(macro, 0);
  });
  window.ShowMacro(macro, 0);
  auto& histogram = Find<HistogramView>(window, "Histogram");
  ASSERT_TRUE(Await([&] { return Find<QLabel>(window, "lblTogether").text().contains("von"); }));
  QTest::qWait(20);  // the layout gives it its size
  QString rejected = Cell(1, StepTable::rejected);
  int line = histogram.width();  // the upper limit is the first line from the right
  const int middle = histogram.height() / 2;
  while (line > 0 && histogram.cursor().shape() != Qt::SplitHCursor) QTest::mouseMove(&histogram, {--line, middle});
  ASSERT_GT(line, 0);
  QTest::mousePress(&histogram, Qt::LeftButton, {}, {line - 3, middle});
  for (int x = line; x > line * 6 / 10; x -= 5) QTest::mouseMove(&histogram, {x, middle});
  QTest::mouseRelease(&histogram, Qt::LeftButton, {}, {line * 6 / 10, middle});
  EXPECT_LT(ReadParameterNumber(macro[0].Text("TxtAbsIntMax")), 9.0);
  ASSERT_TRUE(Await([&] { return Cell(1, StepTable::rejected) != rejected; }));
  const double dragged = ReadParameterNumber(macro[0].Text("TxtAbsIntMax"));
  QTest::keyClick(&histogram, Qt::Key_Right);
  EXPECT_GT(ReadParameterNumber(macro[0].Text("TxtAbsIntMax")), dragged);
}

TEST_F(PreviewWindow, TheSampleLeadsToTheOddFile) {
  window.ShowMacro({Search("12")}, 0);
  auto& strip = Find<SampleStrip>(window, "Sample");
  strip.setFocus();
  const auto shown = [&] { return window.windowTitle(); };
  ASSERT_TRUE(Await([&] {
    QTest::keyClick(&strip, Qt::Key_Right);
    QTest::keyClick(&strip, Qt::Key_Return);
    return shown().contains("f5.vas");
  }));
  QTest::mouseClick(&strip, Qt::LeftButton, {}, {5, strip.height() / 2});
  EXPECT_TRUE(shown().contains("f0.vas"));
  Find<QSpinBox>(window, "spnSample").setValue(2);
  ASSERT_TRUE(Await([&] { return Cell(1, StepTable::rejected) != ""; }));
  auto& size = Find<QSpinBox>(window, "spnSample");
  size.setFocus();
  size.selectAll();
  QTest::keyClicks(&size, "3");  // the number is told when the box loses the focus, now with the window itself
}

TEST_F(PreviewWindow, DamagedAndVanishedFilesAndHurryAreSaid) {
  place.Write("t/kaputt.vas", "kein Feld");
  window.ShowFiles(place.Path() + "t/", {"kaputt.vas", "fehlt.vas"});
  window.ShowMacro({Command("evtGauss3x3"), MacroEvent(99), MacroEvent()}, -1);
  ASSERT_TRUE(Await([&] { return Cell(0, 0) != "" && !View().HasField(); }));
  MacroEventList macro(2000, Command("evtGauss3x3"));
  for (int k = 0; k < 40; ++k) {
    macro[static_cast<std::size_t>(k)] = Search(k % 2 == 0 ? "12" : "3");
    window.ShowMacro(macro, k * 7 % 50);
    window.ShowFiles(place.Path() + "s/", {"f0.vas", k % 3 == 0 ? "fehlt.vas" : "f1.vas"});
    QTest::keyClick(&View(), k % 2 == 0 ? Qt::Key_Right : Qt::Key_Left);
    if (k % 9 == 0) window.Stop();
    if (k % 9 == 3) window.Reload();
    if (k % 11 == 0) window.hide();
    if (k % 11 == 5) window.show();
    QTest::qWait(k % 5);
  }
  window.Reload();
  window.show();
  window.ShowMacro({Command("evtGauss3x3")}, -1);
  window.ShowFiles(place.Path() + "s/", {"f0.vas"});
  EXPECT_TRUE(Await([&] { return Table().model()->rowCount() == 2 && Cell(1, StepTable::changed) != ""; }));
}

}  // namespace
}  // namespace quiverion::test
