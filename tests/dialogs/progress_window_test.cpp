#include <gtest/gtest.h>

#include <QAccessible>
#include <QGroupBox>
#include <QLabel>
#include <QProgressBar>
#include <QProxyStyle>
#include <QStyleFactory>

#include "dialogs/frmShowProgress.h"
#include "dialogs/repaint_throttle.h"
#include "dialogs/widgets/message_box.h"
#include "support/approved.h"
#include "support/test_session.h"
#include "windows/modal_script.h"

namespace quiverion {
namespace {

using test::Find;

TEST(RepaintThrottle, PaintsNewAndSlowStepsAlwaysAndQuickOnesNowAndThen) {
  RepaintThrottle throttle;
  const struct {
    const char* step;
    double begins;
    bool painted;
  } steps[] = {
      {"laden", 0.000, true},    {"median", 0.001, true},   {"sichern", 0.101, true},  // the first file
      {"laden", 0.103, false},   {"median", 0.105, true},  // it took 0.1 s in the previous file
      {"sichern", 0.108, false}, {"laden", 0.109, false},  // now all steps are quick
      {"median", 0.110, false},  {"sichern", 0.144, false}, {"laden", 0.146, false},  // the median took the most time:
      {"median", 0.147, true},   {"sichern", 0.148, false}, {"laden", 0.229, true},   // so it is shown
  };
  for (const auto& s : steps) EXPECT_EQ(throttle.IsDue(s.step, s.begins), s.painted) << s.step << " at " << s.begins;
}

TEST(ProgressCaption, TellsPercentOnlyWhereTheWindowIsMinimised) {
  EXPECT_EQ(ProgressCaption(false, 1, 8), "QuiverionSeries  -  Makro wird bearbeitet");
  EXPECT_EQ(ProgressCaption(true, 1, 8), "QuiverionSeries (12%)");  // halves to even
  EXPECT_EQ(ProgressCaption(true, 3, 8), "QuiverionSeries (38%)");
}

TEST(ProgressWindow, SaysHowLongItTakesAndHowManyFilesHaveErrors) {
  const struct {
    int files, done, errors;
    double seconds;
    const char* text;
  } cases[] = {{4, 0, 0, 9.0, ""},
               {4, 1, 0, 1.5, "noch etwa 5 s"},  // 4.5, away from zero
               {4, 1, 1, 20.0, "noch etwa 1 min 0 s,  1 Datei mit Fehlern"},
               {3000, 1000, 3, 1000.0, "noch etwa 33 min,  3 Dateien mit Fehlern"},
               {100, 1, 0, 74.0, "noch etwa 2 h 2 min"},
               {4, 4, 2, 8.0, "noch etwa 0 s,  2 Dateien mit Fehlern"}};
  for (const auto& c : cases) {
    RunProgress progress{
        .fileCount = c.files, .filesDone = c.done, .fileName = "", .event = "", .filesWithErrors = c.errors};
    EXPECT_EQ(RemainingText(progress, c.seconds), c.text);
  }
}

TEST(ProgressWindow, ShowsWhereTheRunIs) {
  test::ScriptedUi ui;
  frmShowProgress window(ui);
  const auto shown = [&](const RunProgress& progress) {
    window.Show(progress);
    const auto& bar = Find<QProgressBar>(window, "pgbProgress");
    return FromQt(Find<QLabel>(window, "lblFileName").text() + "|" + Find<QLabel>(window, "lblRunningEvent").text() +
                  "|" + Find<QGroupBox>(window, "Frame1").title()) +
           "|" + std::to_string(bar.value()) + "/" + std::to_string(bar.maximum());
  };
  EXPECT_EQ(shown({4, 0, 0, "", ""}), "||Fortschritt|0/4");
  EXPECT_EQ(shown({4, 3, 2, "<b>.vas", "Interpolation", true}),
            "Aktuelle Datei (3 von 4):  <b>.vas|Interpolation|Fortschritt  (Fehler aufgetreten)|2/4");
  for (const char* label : {"lblFileName", "lblRunningEvent", "lblRemaining"}) {
    auto& shownLabel = Find<QLabel>(window, label);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&shownLabel)->text(QAccessible::Name), shownLabel.text());
  }
  window.setWindowState(Qt::WindowMinimized);
  shown({4, 4, 3, "c.vas", "Interpolation", true});
  EXPECT_EQ(FromQt(window.windowTitle()), "QuiverionSeries (75%)");
}

TEST(MessageBox, OffersItsButtonsAndTakesClosingForTheLeastChange) {
  using enum MessageButtons;
  std::string told;
  for (const MessageButtons buttons : {ok, okCancel, retryCancel, abortRetryIgnore, yesNo, yesNoCancel}) {
    test::ModalScript script;
    script.Expect<QMessageBox>("QMessageBox", [&](QMessageBox& box) {
      EXPECT_EQ(box.textFormat(), Qt::PlainText);
      QStringList texts;
      for (const QAbstractButton* button : box.buttons()) texts.append(button->text());
      texts.sort();
      told += FromQt(box.text() + texts.join("") + " enters " + box.defaultButton()->text());
      box.close();
    });
    Message message{"t", "<i>\r\nzwei ", buttons, MessageIcon::question};
    if (buttons == yesNo) message.preselected = MessageAnswer::no;
    told += ", closed " + std::to_string(static_cast<int>(ShowMessageBox(nullptr, message))) + "\n";
  }
  test::ExpectApproved("message_boxes.txt", told);
}

// Many desktops have pictures for some of the buttons.
TEST(MessageBox, HasOnlyWordsOnItsButtons) {
  class Pictures : public QProxyStyle {
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* more) const override {
      return hint == SH_DialogButtonBox_ButtonsHaveIcons ? 1 : QProxyStyle::styleHint(hint, option, widget, more);
    }
  };
  auto* const style = qobject_cast<QProxyStyle*>(QApplication::style());
  ASSERT_NE(style, nullptr);
  style->setBaseStyle(new Pictures);
  test::ModalScript script;
  script.Expect<QMessageBox>("QMessageBox", [&](QMessageBox& box) {
    for (const QAbstractButton* button : box.buttons()) EXPECT_TRUE(button->icon().isNull());
    box.close();
  });
  ShowMessageBox(nullptr, {.title = "t", .text = "?", .buttons = MessageButtons::yesNoCancel});
  style->setBaseStyle(QStyleFactory::create("fusion"));
}

}  // namespace
}  // namespace quiverion
