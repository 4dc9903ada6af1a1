#include "dialogs/application.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QApplication>
#include <QIcon>
#include <QLibraryInfo>
#include <QLocale>
#include <QPainter>
#include <QProxyStyle>
#include <QScreen>
#include <QStyleOption>
#include <QTranslator>
#include <QWidget>

#include "dialogs/widgets/icons.h"
#include "dialogs/widgets/native.h"
#include "dialogs/widgets/run_modal.h"

namespace quiverion {
namespace {

// Keeps shortcuts from acting in a window behind a dialog. Qt lets them through until the dialog is the active window,
// and presses the button of a mnemonic 100 ms late, when a dialog may have opened. With quick typing, a key could
// change what the dialog is about. A mnemonic that a button shares with something else reaches them in turn. Qt would
// only move the focus to the button.
class ShortcutRules : public QObject {
 public:
  using QObject::QObject;

  bool eventFilter(QObject* owner, QEvent* event) override {
    if (event->type() != QEvent::Shortcut) return false;
    const QObject* inWindow = owner;  // a menu item or a shortcut is a child of its window
    while (inWindow != nullptr && !inWindow->isWidgetType()) inWindow = inWindow->parent();
    if (inWindow != nullptr && IsBehindDialog(*static_cast<const QWidget*>(inWindow))) return true;
    auto* const button = qobject_cast<QAbstractButton*>(owner);
    if (button == nullptr) return false;
    const bool takesFocus = button->isCheckable() && (button->focusPolicy() & Qt::ClickFocus) != 0;
    if (takesFocus) button->setFocus(Qt::ShortcutFocusReason);
    button->click();
    return true;
  }
};

// When a window becomes active again and the keyboard is in use, shows its focus. By itself, a style does so only after
// Tab.
class FocusCues : public QObject {
 public:
  using QObject::QObject;

  bool eventFilter(QObject* object, QEvent* event) override {
    const QEvent::Type type = event->type();
    if (type == QEvent::KeyPress || type == QEvent::ShortcutOverride) typing_ = true;
    if (type == QEvent::MouseButtonPress) typing_ = false;
    if (type == QEvent::WindowActivate && typing_ && object->isWidgetType()) {
      static_cast<QWidget*>(object)->window()->setAttribute(Qt::WA_KeyboardFocusChange);
    }
    return false;
  }

 private:
  bool typing_ = false;
};

// Windows begin no larger than the screen.
class FirstSize : public QObject {
 public:
  using QObject::QObject;

  bool eventFilter(QObject* object, QEvent* event) override {
    if (event->type() != QEvent::Show || !object->isWidgetType()) return false;
    auto* const window = static_cast<QWidget*>(object);
    constexpr const char* shown = "wasShown";
    if (!window->isWindow() || !window->testAttribute(Qt::WA_Resized) || window->property(shown).toBool()) return false;
    window->setProperty(shown, true);
    constexpr QSize frame(12, 40);
    window->resize(window->size().boundedTo(window->screen()->availableSize() - frame));
    return false;
  }
};

// The desktop's style, but with words alone on the buttons of every box: it has pictures for some of them only. A list
// or a text with the focus has a frame that shows it, also if nothing in it is current.
class WindowStyle : public QProxyStyle {
 public:
  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* more) const override {
    if (hint == SH_DialogButtonBox_ButtonsHaveIcons) return 0;
    return QProxyStyle::styleHint(hint, option, widget, more);
  }

  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override {
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    const bool focused = element == PE_Frame && option->state.testFlag(State_HasFocus);
    if (!focused || qobject_cast<const QAbstractScrollArea*>(widget) == nullptr) return;
    painter->save();
    painter->setPen(option->palette.color(QPalette::Highlight));
    painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
    painter->restore();
  }
};

}  // namespace

void PrepareApplication(QApplication& application) {
  QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
  UseIcons();
  QApplication::setStyle(new WindowStyle);
  ChooseFonts();
  auto* const german = new QTranslator(&application);
  if (german->load(QStringLiteral("qtbase_de"), QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
    QCoreApplication::installTranslator(german);
  }
  application.installEventFilter(new ShortcutRules(&application));
  application.installEventFilter(new FirstSize(&application));
  application.installEventFilter(new FocusCues(&application));
  QApplication::setWindowIcon(QIcon(":/icons/program.ico"));
  QGuiApplication::setDesktopFileName(QStringLiteral("org.quiverion.QuiverionSeries"));
  QApplication::setApplicationName(QStringLiteral("QuiverionSeries"));
  // The main window is hidden during a run, which must not end the program.
  QApplication::setQuitOnLastWindowClosed(false);
}

}  // namespace quiverion
