// The parameter windows as the user operates them, with keys and clicks.
#include "dialogs/parameters/parameter_windows.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>
#include <QTreeWidget>

#include "dialogs/parameters/frmEditVector.h"
#include "dialogs/parameters/frmFaultVectors.h"
#include "dialogs/parameters/frmMirrorOptions.h"
#include "dialogs/parameters/frmPrefixPostfix.h"
#include "dialogs/parameters/frmXYTrafo.h"
#include "dialogs/parameters/parameter_editing.h"
#include "dialogs/widgets/message_box.h"
#include "support/approved.h"
#include "support/test_session.h"
#include "windows/modal_script.h"

namespace quiverion {
namespace {

using test::Find;
using test::Press;
using test::Type;

MacroEvent NewCommand(std::int32_t eventId) {
  MacroEvent event(eventId);
  AddDefaultParameters(event);
  return event;
}

template <class Window>
MacroEvent Stored(const Window& window) {
  MacroEvent event;
  window.Store(event);
  return event;
}

std::string TextOf(const QWidget& window, const char* box) {
  return FromQt(Find<QLineEdit>(window, box).text());
}

TEST(ParameterWindowsTest, GiveBackWhatTheyWereGiven) {
  test::ScriptedUi ui;
  QWidget parent;
  ParameterWindows windows(parent, ui);
  std::int32_t before = 0;
  // Twice each, the second time with every check mark inverted.
  for (const std::int32_t id : {10101, 30001, 30001, 30002, 30002, 30003, 40201}) {
    const bool marked = id != before;
    before = id;
    MacroEvent event = NewCommand(id);
    for (const Parameter& parameter : ParametersOf(id)) {
      if (parameter.kind == ParameterKind::text) event.Set(parameter.key, std::string("7") + parameter.key.back());
      if (parameter.kind == ParameterKind::number) event.Set(parameter.key, -2.25);
      if (parameter.kind == ParameterKind::flag)
        event.Set(parameter.key, (parameter.key != "OptXCompIntOut") == marked);
      if (parameter.kind == ParameterKind::checkState)
        event.Set(parameter.key, (parameter.key != "ChkPosX" && parameter.key != "ChkYComp") == marked ? 1 : 0);
      if (parameter.kind == ParameterKind::integer) event.Set(parameter.key, 3);
    }
    const MacroEvent given = event;
    test::ModalScript script;
    const auto press = [&](const char* button) {
      const std::string className(id == 10101   ? "frmPrefixPostfix"
                                  : id == 30001 ? "frmFaultVectors"
                                  : id == 30002 ? "frmMirrorOptions"
                                  : id == 30003 ? "frmXYTrafo"
                                                : "frmEditVector");
      script.Expect<QDialog>("quiverion::" + className, [button](QDialog& window) { Press(window, button); });
    };
    press("cmdOk");
    EXPECT_TRUE(windows.EditInWindow(*FindCommand(id), event, {})) << id;
    EXPECT_EQ(event.Values(), given.Values()) << id;
    press("cmdCancel");
    MacroEvent untouched(id);
    AddDefaultParameters(untouched);
    EXPECT_FALSE(windows.EditInWindow(*FindCommand(id), untouched, {})) << id;
  }
}

TEST(ParameterWindowsTest, TheTreeHoldsEveryCommandAndKeepsItsState) {
  test::ScriptedUi ui;
  QWidget parent;
  ParameterWindows windows(parent, ui);
  test::ModalScript script;
  const auto node = [](const QDialog& window, const char* key) {
    auto& tree = Find<QTreeWidget>(window, "tvwMacroEvents");
    for (QTreeWidgetItemIterator item(&tree); *item != nullptr; ++item) {
      if ((*item)->data(0, Qt::UserRole) == QString(key)) return *item;
    }
    throw std::runtime_error(std::string("no node ") + key);
  };
  script.Expect<QDialog>("quiverion::frmChooseMacroEvent", [&](QDialog& window) {
    auto& tree = Find<QTreeWidget>(window, "tvwMacroEvents");
    auto& ok = Find<QPushButton>(window, "cmdOk");
    EXPECT_EQ(tree.topLevelItemCount(), 7);
    EXPECT_FALSE(ok.isEnabled());
    tree.setCurrentItem(node(window, "K40100"));
    EXPECT_FALSE(ok.isEnabled());
    const qint64 closed = tree.currentItem()->icon(0).cacheKey();
    tree.currentItem()->setExpanded(true);
    EXPECT_NE(tree.currentItem()->icon(0).cacheKey(), closed);
    tree.currentItem()->setExpanded(false);
    EXPECT_EQ(tree.currentItem()->icon(0).cacheKey(), closed);
    tree.currentItem()->setExpanded(true);
    QTest::keyClick(&tree, Qt::Key_Return);
    EXPECT_TRUE(window.isVisible());  // a menu is not accepted
    tree.setCurrentItem(node(window, "K40103"));
    EXPECT_TRUE(ok.isEnabled());
    QTest::keyClick(&tree, Qt::Key_Return);
  });
  EXPECT_EQ(windows.ChooseCommand(), 40103);
  script.Expect<QDialog>("quiverion::frmChooseMacroEvent", [&](QDialog& window) {
    EXPECT_TRUE(node(window, "K40100")->isExpanded());
    EXPECT_EQ(Find<QTreeWidget>(window, "tvwMacroEvents").currentItem(), node(window, "K40103"));
    Press(window, "cmdOk");
  });
  EXPECT_EQ(windows.ChooseCommand(), 40103);
  script.Expect<QDialog>("quiverion::frmChooseMacroEvent", [](QDialog& window) { window.close(); });
  EXPECT_EQ(windows.ChooseCommand(), std::nullopt);
}

TEST(PrefixPostfix, FiltersWhatIsTypedAndPasted) {
  test::ScriptedUi ui;
  frmPrefixPostfix window(ui);
  window.Load(NewCommand(10101));
  window.show();
  Type(window, "txtPrefix", "/a/b.:c");
  auto& prefix = Find<QLineEdit>(window, "txtPrefix");
  prefix.setCursorPosition(1);
  QTest::keyClicks(&prefix, "/");  // where there is one already
  EXPECT_EQ(FromQt(prefix.text()), "a\\bc");
  auto& postfix = Find<QLineEdit>(window, "txtPostfix");
  QApplication::clipboard()->setText("_1/2.x\n\\");
  postfix.setFocus();
  QTest::keyClick(&postfix, Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(FromQt(postfix.text()), "_12x");
  QTest::keyClick(&postfix, Qt::Key_Home);
  QTest::keyClicks(&postfix, "a.b");
  QTest::keyClick(&postfix, Qt::Key_Delete);
  EXPECT_EQ(Stored(window).Text("Postfix"), "ab12x");
  for (int k = 0; k < 20 && postfix.isUndoAvailable(); ++k) QTest::keyClick(&postfix, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(FromQt(postfix.text()), "");  // filtered input can be undone, too
  window.Load([] {
    MacroEvent stored = NewCommand(10001);
    stored.Set("Prefix", std::string("a.b?"));
    return stored;
  }());
  EXPECT_EQ(TextOf(window, "txtPrefix"), "a.b?");  // a text of the macro is shown unchanged
}

TEST(NumberBoxes, SelectTheirTextAndKeepSignAndPointInPlace) {
  test::ScriptedUi ui;
  frmFaultVectors window(ui);
  MacroEvent event = NewCommand(30001);
  event.Set("ChkXComp", 1);
  window.Load(event);
  window.show();
  window.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  auto& lower = Find<QLineEdit>(window, "txtXCompIntMin");
  QTest::mouseClick(&lower, Qt::LeftButton);
  EXPECT_EQ(lower.selectedText(), "-10");
  QTest::keyClicks(&lower, "-5,2.5-x");
  EXPECT_EQ(FromQt(lower.text()), "-5.25");
}

TEST(FaultVectors, EnablesAndOrdersItsControls) {
  test::ScriptedUi ui;
  frmFaultVectors window(ui);
  window.Load(NewCommand(30001));
  window.show();
  // Which are enabled; those of the rules, without a list of them here.
  const auto enabled = [&] {
    std::string names;
    for (const QWidget* control : window.findChildren<QWidget*>(QRegularExpression("^(txt|opt|cbo|fra|cmd)"))) {
      if (control->isEnabled()) names += FromQt(control->objectName()) + " ";
    }
    return names + "\n";
  };
  std::string told = enabled();
  for (const char* mark : {"chkAbsDeviation", "optUserVector", "chkDirDeviation", "optMedian", "chkAbsInterval",
                           "optAbsIntIn", "chkXComp", "chkYComp", "optLogicalAnd"}) {
    Press(window, mark);
    told += std::string(mark) + ": " + enabled();
  }
  for (const char* box : {"cboMedianX", "cboMedianY", "cboLocalMiddleX"}) {
    const auto& sizes = Find<QComboBox>(window, box);
    told += FromQt(sizes.currentText() + " of " + sizes.itemText(sizes.count() - 1)) + "\n";
  }
  test::ExpectApproved("fault_vector_controls.txt", told);
  Type(window, "txtAbsIntMin", "3,5");
  Type(window, "txtAbsIntMax", "1");
  Press(window, "cmdOk");
  EXPECT_EQ(window.result(), QDialog::Accepted);
  const MacroEvent stored = Stored(window);
  EXPECT_EQ(stored.Text("TxtAbsIntMin") + ";" + stored.Text("TxtAbsIntMax"), "1;3.5");
  EXPECT_EQ(stored.Integer("CompareVectorType"), 3);
  EXPECT_FALSE(stored.Flag("OptAbsIntOut") || stored.Flag("LogicalOr"));
}

TEST(FaultVectors, ShowsWhatADamagedMacroHolds) {
  test::ScriptedUi ui;
  frmFaultVectors window(ui);
  MacroEvent event = NewCommand(30001);
  event.Set("CboMedianX", 100000);
  event.Set("CboMedianY", -5);
  event.Set("CompareVectorType", 9);
  event.Set("ChkXComp", 2);
  event.Set("TxtAbsIntMax", std::string(400, '9'));
  window.Load(event);
  EXPECT_EQ(Stored(window).Integer("CboMedianX"), 199);
  EXPECT_EQ(Stored(window).Integer("CboMedianY"), 0);
  EXPECT_EQ(Stored(window).Integer("CompareVectorType"), 4);
  window.show();
  Press(window, "cmdOk");
  EXPECT_TRUE(window.isVisible());
  EXPECT_EQ(ui.messages.at(0).text, "Die Zahl '" + std::string(30, '9') + "...' ist zu groß!");
}

TEST(XYTrafo, CopiesFactorsAndRefusesZero) {
  test::ScriptedUi ui;
  frmXYTrafo window(ui);
  window.Load(NewCommand(30003));
  window.show();
  Type(window, "txtFakX", "2,5");
  EXPECT_EQ(TextOf(window, "txtFakVecX") + " " + TextOf(window, "txtFakVecY"), "2.5 1");
  Type(window, "txtFakVecX", "3");
  EXPECT_EQ(TextOf(window, "txtFakX"), "2.5");
  for (const char* box : {"txtFakX", "txtFakY", "txtFakVecX", "txtFakVecY"}) {
    const std::string kept = TextOf(window, box);
    Type(window, box, "0.0");
    Press(window, "cmdOk");
    ASSERT_TRUE(window.isVisible());
    Type(window, box, kept.c_str());
  }
  test::ExpectApproved("zero_factors.txt", ui.TakeBoxes());
  Press(window, "cmdOk");
  EXPECT_EQ(window.result(), QDialog::Accepted);
}

class DesktopFont : public testing::TestWithParam<int> {
 protected:
  DesktopFont() {
    QFont font = before_;
    font.setPointSize(GetParam());
    QApplication::setFont(font);
  }
  ~DesktopFont() override { QApplication::setFont(before_); }

 private:
  QFont before_ = QApplication::font();
};

INSTANTIATE_TEST_SUITE_P(Points, DesktopFont, testing::Values(9, 14, 16), testing::PrintToStringParamName());

TEST_P(DesktopFont, LeavesEveryControlItsTextAndANameForScreenReaders) {
  test::ScriptedUi ui;
  frmFaultVectors faultVectors(ui);
  frmXYTrafo trafo(ui);
  frmPrefixPostfix names(ui);
  frmMirrorOptions mirror(ui);
  frmEditVector vector(ui, "Zu subtrahierender Vektor");
  faultVectors.Load(NewCommand(30001));
  trafo.Load(NewCommand(30003));
  names.Load(NewCommand(10101));
  mirror.Load(NewCommand(30002));
  MacroEvent event = NewCommand(40201);
  event.Set("XComp", -123456.789);
  vector.Load(event);
  for (QWidget* window : std::initializer_list<QWidget*>{&faultVectors, &trafo, &names, &mirror, &vector}) {
    window->show();
    QApplication::processEvents();
    test::ExpectReadable(*window);
  }
}

TEST(FileDialog, ShowsItsFiltersAsTheyAreStatedAndListsWhatTheyName) {
  const QTemporaryDir place;
  for (const char* name : {"a.VAS", "b.dat", "c.txt", "ohne"}) {
    ASSERT_TRUE(QFile(place.filePath(name)).open(QIODevice::WriteOnly));
  }
  QWidget parent;
  test::ScriptedUi ui;
  ParameterWindows windows(parent, ui);
  test::ModalScript script;
  script.Expect<QDialog>("QFileDialog", [](QDialog& dialog) {
    auto& filters = Find<QComboBox>(dialog, "fileTypeCombo");
    EXPECT_EQ(FromQt(filters.itemText(0) + "|" + filters.currentText()),
              "Alle Dateien (*.*)|Vektorfelder (*.vas;*.vec;*.dat)");
    const auto& list = Find<QAbstractItemView>(dialog, "listView");
    const auto lists = [&list](int count) {
      return QTest::qWaitFor([&list, count] { return list.model()->rowCount(list.rootIndex()) == count; }, 10000);
    };
    EXPECT_TRUE(lists(2));
    filters.setCurrentIndex(0);
    emit filters.activated(0);
    EXPECT_TRUE(lists(4));
    dialog.reject();
  });
  test::TestSession session;
  EditingServices services{session.session.context, windows, PathFromQt(place.path())};
  MacroEvent event(20002);
  EXPECT_EQ(AskParameters(services, event, true), EditOutcome::cancelled);
}

TEST_P(DesktopFont, LeavesAnInputBoxItsTitleAndItsQuestion) {
  QWidget parent;
  test::ScriptedUi ui;
  ParameterWindows windows(parent, ui);
  test::ModalScript script;
  script.Expect<QDialog>("QInputDialog", [](QDialog& box) {
    EXPECT_GE(box.width(), WidthOfTitle(box));
    test::ExpectReadable(box);
    box.reject();
  });
  EXPECT_FALSE(windows.AskText(
      {"QuiverionSeries - Energiedissipationsrate berechnen", std::string(FindCommand(50104)->editor.text), "1"}));
}

}  // namespace
}  // namespace quiverion
