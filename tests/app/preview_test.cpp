// The preview together with the main window: every edit shows, also before Ok.
#include <QTableView>

#include "app/window_fixture.h"
#include "support/commands.h"
#include "view/preview/histogram_view.h"
#include "view/preview/step_table.h"

namespace quiverion::test {
namespace {

class PreviewOfTheProgram : public MainWindow {
 protected:
  // With the larger field of the series, whose vectors can be rejected.
  frmPreview& OpenPreview() {
    place.Write("serie/a.vas", samples::VasBytes(samples::MakeSampleField({.columns = 20, .rows = 15})));
    Open();
    TheSession().macro = {Command("evtFaultVectors", {{"ChkAbsDeviation", 1}})};
    window->ShowMacro(0);
    Files().SelectNames({"a.vas"});
    Trigger("mnuShowPreview");
    for (QWidget* const each : QApplication::topLevelWidgets()) {
      if (auto* const found = qobject_cast<frmPreview*>(each); found && found->isVisible()) preview = found;
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return Rejected() > 0; }));
    return *preview;
  }

  int Rejected() {
    const auto& model = *Find<QTableView>(*preview, "tblSteps").model();
    return model.index(1, StepTable::rejected).data().toInt();
  }

  frmPreview* preview = nullptr;
};

TEST_F(PreviewOfTheProgram, ShowsAParameterBeforeOkAndForgetsItAfterCancel) {
  OpenPreview();
  const int with30 = Rejected();
  for (const bool confirms : {false, true}) {
    script.Expect<QDialog>("quiverion::frmFaultVectors", [&](QDialog& dialog) {
      Type(dialog, "txtAbsDeviation", "300");
      EXPECT_TRUE(QTest::qWaitFor([&] { return Rejected() < with30; }));
      // The line of the histogram moves the box.
      auto& histogram = Find<HistogramView>(*preview, "Histogram");
      EXPECT_TRUE(QTest::qWaitFor([&] {
        QTest::keyClick(&histogram, Qt::Key_Left);
        return Find<QLineEdit>(dialog, "txtAbsDeviation").text().toInt() < 300;
      }));
      EXPECT_EQ(TheSession().macro[0].Text("TxtAbsDeviation"), "30") << "the macro itself waits for Ok";
      Press(dialog, confirms ? "cmdOk" : "cmdCancel");
    });
    MacroList().setCurrentRow(0);
    Click("cmdEditMacroEvent");
    EXPECT_TRUE(QTest::qWaitFor([&] { return confirms ? Rejected() < with30 : Rejected() == with30; }));
  }
  EXPECT_NE(TheSession().macro[0].Text("TxtAbsDeviation"), "30");
}

TEST_F(PreviewOfTheProgram, WithoutAWindowTheLineMovesTheMacroAndARunStopsIt) {
  OpenPreview();
  auto& histogram = Find<HistogramView>(*preview, "Histogram");
  histogram.setFocus();
  EXPECT_TRUE(QTest::qWaitFor([&] {
    QTest::keyClick(&histogram, Qt::Key_Right);
    return TheSession().macro[0].Text("TxtAbsDeviation") != "30";
  }));
  // A run begins while the preview computes; afterwards the preview shows its results.
  script.Expect<QDialog>("quiverion::frmShowLogFile", [&](QDialog& log) {
    EXPECT_FALSE(Find<QWidget>(*preview, "centralwidget").isEnabled());
    log.close();
  });
  QTest::keyClick(&histogram, Qt::Key_Left);
  Click("cmdOk");
  EXPECT_TRUE(Find<QWidget>(*preview, "centralwidget").isEnabled());
  MacroList().setCurrentRow(0);
  Click("cmdDeleteMacroEvent");
  EXPECT_TRUE(QTest::qWaitFor([&] { return Find<QTableView>(*preview, "tblSteps").model()->rowCount() == 1; }));
  Files().SelectNames({"b.vas"});
  EXPECT_TRUE(QTest::qWaitFor([&] { return preview->windowTitle().contains("b.vas"); }));
}

}  // namespace
}  // namespace quiverion::test
