// The help window: from the menu, and by F1 from wherever the user is.
#include <QScrollBar>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTreeWidget>

#include "dialogs/help/frmHelp.h"
#include "window_fixture.h"
#include "windows/dark_palette.h"

namespace quiverion::test {
namespace {

class HelpWindow : public MainWindow {
 protected:
  HelpWindow() {
    helpFile = HELP_FILE;
    Open();
  }
  frmHelp* Window() {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
      if (auto* const help = qobject_cast<frmHelp*>(widget); help != nullptr && help->isVisible()) return help;
    }
    return nullptr;
  }
  std::string Page() {
    const frmHelp* const help = Window();
    return help == nullptr ? "closed" : FromQt(Find<QTextBrowser>(*help, "txtPage").source().toString());
  }
  void ExpectF1(const char* className, const std::string& page, std::function<void(QDialog&)> before = {}) {
    script.Expect<QDialog>(className, [this, page, before](QDialog& dialog) {
      if (before) before(dialog);
      QTest::keyClick(&dialog, Qt::Key_F1);
      EXPECT_EQ(Page(), page);
      dialog.reject();
      EXPECT_EQ(Page(), page);
    });
  }
};

TEST_F(HelpWindow, ShowsTheContents) {
  Trigger("mnuShowHelp");
  EXPECT_EQ(Page(), "inhalt.html");
  ExpectReadable(*Window());
  auto& browser = Find<QTextBrowser>(*Window(), "txtPage");
  EXPECT_TRUE(browser.toPlainText().contains("QuiverionSeries"));
  auto& tree = Find<QTreeWidget>(*Window(), "tvwContents");
  QTreeWidgetItem* const chapter = tree.topLevelItem(1);
  emit tree.itemClicked(chapter, 0);
  EXPECT_EQ(Page(), FromQt(chapter->data(0, Qt::UserRole).toString()));
  EXPECT_EQ(FromQt(Window()->windowTitle()), "QuiverionSeries - Hilfe: " + FromQt(browser.documentTitle()));
  Window()->activateWindow();
  EXPECT_TRUE(QTest::qWaitForWindowActive(Window()));
  QTest::keyClick(Window(), Qt::Key_Left, Qt::AltModifier);
  EXPECT_EQ(Page(), "inhalt.html");
  Press(*Window(), "cmdForward");
  EXPECT_EQ(tree.currentItem(), chapter);
  Window()->ShowTopic("evtGauss3x3");
  EXPECT_EQ(FromQt(tree.currentItem()->text(0) + " < " + tree.currentItem()->parent()->text(0)), "Gauß (3x3) < Filter");
}

TEST_F(HelpWindow, FollowsThePalette) {
  Trigger("mnuShowHelp");
  Window()->ShowTopic("mnuDissipation");
  auto& browser = Find<QTextBrowser>(*Window(), "txtPage");
  // The ground, the colours of the texts, and how dark the darkest of these is.
  int darkest = 0;
  const auto colours = [&] {
    darkest = 255;
    std::string text = FromQt(browser.document()->rootFrame()->frameFormat().background().color().name());
    for (QTextBlock block = browser.document()->begin(); block.isValid(); block = block.next()) {
      for (auto piece = block.begin(); !piece.atEnd(); ++piece) {
        const QTextCharFormat format = piece.fragment().charFormat();
        if (!format.hasProperty(QTextFormat::ForegroundBrush)) continue;
        darkest = std::min(darkest, format.foreground().color().lightness());
        text += " " + FromQt(format.foreground().color().name());
      }
    }
    return text;
  };
  const std::string light = colours();
  const int scrolled = browser.verticalScrollBar()->value();
  {
    const DarkPalette dark;
    EXPECT_TRUE(colours().starts_with("#202020 "));
    EXPECT_GT(darkest, 160);
    EXPECT_EQ(browser.verticalScrollBar()->value(), scrolled);
  }
  EXPECT_EQ(colours(), light);
}

TEST_F(HelpWindow, FindsAKeyword) {
  Trigger("mnuShowHelp");
  Find<QTabWidget>(*Window(), "tabs").setCurrentIndex(1);  // as its access key does
  auto& box = Find<QLineEdit>(*Window(), "txtKeyword");
  EXPECT_EQ(Window()->focusWidget(), &box);
  Trigger("mnuHelpIndex");
  Type(*Window(), "txtKeyword", "viskos");
  auto& list = Find<QListWidget>(*Window(), "lstKeywords");
  ASSERT_NE(list.currentItem(), nullptr);
  EXPECT_TRUE(list.currentItem()->text().contains("Viskosität") && list.item(0)->isHidden());
  QTest::keyClick(&box, Qt::Key_Return);
  EXPECT_EQ(Page(), FromQt(list.currentItem()->data(Qt::UserRole).toString()));
  Type(*Window(), "txtKeyword", "buffer");
  const int first = list.currentRow();
  QTest::keyClick(&box, Qt::Key_Down);
  EXPECT_TRUE(list.currentRow() > first && !list.currentItem()->isHidden());
  Type(*Window(), "txtKeyword", "xyzzy");
  EXPECT_EQ(list.currentItem(), nullptr);
  Window()->ShowTopic("nothing of that name");
  EXPECT_EQ(Page(), "inhalt.html");
}

TEST_F(HelpWindow, F1LeadsToThePageOfTheDialog) {
  ExpectF1("quiverion::frmChooseMacroEvent", "befehle-berechnungen.html#evtGauss3x3", [](QDialog& dialog) {
    auto& tree = Find<QTreeWidget>(dialog, "tvwMacroEvents");
    for (QTreeWidgetItemIterator item(&tree); *item != nullptr; ++item) {
      if ((*item)->data(0, Qt::UserRole) == "K40103") tree.setCurrentItem(*item);
    }
    // The key "*" once changed its picture to an open directory.
    const qint64 picture = tree.currentItem()->icon(0).cacheKey();
    tree.currentItem()->setExpanded(true);
    emit tree.itemExpanded(tree.currentItem());
    EXPECT_EQ(tree.currentItem()->icon(0).cacheKey(), picture);
  });
  Click("cmdNewMacroEvent");

  const struct {
    std::int32_t eventId;
    const char *className, *page;
  } cases[] = {
      {30001, "quiverion::frmFaultVectors", "befehle-bearbeiten.html#evtFaultVectors"},
      {10001, "quiverion::frmPrefixPostfix", "makro.html#frmPrefixPostfix"},
      {50104, "QInputDialog", "befehle-ansicht.html#evtPaletteMin"},
      {50001, "QMessageBox", "befehle-ansicht.html#evtShowHeader"},
      {60001, "QFileDialog", "befehle-statistik.html#evtCollectStatistics"},
  };
  for (const auto& c : cases) {
    SetMacro({c.eventId});
    MacroEvent& event = TheSession().macro[0];
    if (c.eventId == 50104) event.Set("Value", 1.0);
    if (c.eventId == 60001) event.Set("FileName", place.Path() + "s.col");
    MacroList().setCurrentRow(0);
    ExpectF1(c.className, c.page);
    Click("cmdEditMacroEvent");
  }
  ExpectF1("QMessageBox", "statistik.html#mnuTu");
  script.ExpectFile("");
  Trigger("mnuTu");
  ExpectF1("QMessageBox", "hauptfenster.html#frmMain");
  Trigger("mnuAbout");
  ExpectF1("QMessageBox", "lauf.html#pruefungen");
  Click("cmdOk");
}

TEST_F(HelpWindow, IsReadableWhateverDialogIsOpen) {
  Trigger("mnuShowHelp");
  struct Blocked : QObject {
    int count = 0;
    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
      count += event->type() == QEvent::WindowBlocked ? 1 : 0;
      return false;
    }
  } help, main;
  Window()->installEventFilter(&help);
  window->installEventFilter(&main);
  SetMacro({30001});
  MacroList().setCurrentRow(0);
  ExpectF1("quiverion::frmFaultVectors", "befehle-bearbeiten.html#evtFaultVectors");
  Click("cmdEditMacroEvent");
  script.Expect<QDialog>("quiverion::frmChooseMacroEvent", [](QDialog& dialog) { dialog.reject(); });
  Click("cmdNewMacroEvent");
  EXPECT_EQ(std::pair(help.count, main.count), std::pair(0, 2));
}

TEST_F(HelpWindow, F1TellsAboutAMenuItem) {
  QMenu& menu = Get<QMenu>("mnuStatistics");
  menu.popup(window->pos());
  menu.setActiveAction(window->findChild<QAction*>("mnuTu"));
  QTest::keyClick(&menu, Qt::Key_F1);
  EXPECT_EQ(Page(), "statistik.html#mnuTu");
  EXPECT_FALSE(menu.isVisible());
}

}  // namespace
}  // namespace quiverion::test
