#include "dialogs/application.h"

#include <QAbstractButton>
#include <QApplication>
#include <QIcon>
#include <QLibraryInfo>
#include <QLocale>
#include <QProxyStyle>
#include <QScreen>
#include <QTranslator>
#include <QWidget>

#include "dialogs/icons.h"
#include "dialogs/native.h"
#include "dialogs/run_modal.h"

namespace quiverion {
namespace {

// Keeps shortcuts from acting behind a dialog. Qt lets them pass as long as the dialog is not yet the active window, and
// presses the button of a mnemonic 100 ms later, when a dialog may have opened: a key that follows another one closely
// would change what the dialog is about.
// A mnemonic that a button shares with something else reaches them in turn. Qt would only move the focus to the button.
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

// Windows begin no larger than the screen.
class FirstSize : public QObject {
 public:
  using QObject::QObject;

  bool eventFilter(QObject* object, QEvent* event) override {
    if (event->type() != QEvent::Polish || !object->isWidgetType()) return false;
    auto* const window = static_cast<QWidget*>(object);
    if (!window->isWindow() || !window->testAttribute(Qt::WA_Resized)) return false;
    constexpr QSize frame(12, 40);
    window->resize(window->size().boundedTo(window->screen()->availableSize() - frame));
    return false;
  }
};

// The desktop's style, but with words alone on the buttons of every box: it has pictures for some of them only.
class WindowStyle : public QProxyStyle {
 public:
  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* more) const override {
    if (hint == SH_DialogButtonBox_ButtonsHaveIcons) return 0;
    return QProxyStyle::styleHint(hint, option, widget, more);
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
  QApplication::setWindowIcon(QIcon(":/icons/program.ico"));
  QGuiApplication::setDesktopFileName(QStringLiteral("org.quiverion.QuiverionSeries"));
  QApplication::setApplicationName(QStringLiteral("QuiverionSeries"));
  // The main window is hidden during a run: its end is not the program's.
  QApplication::setQuitOnLastWindowClosed(false);
}

}  // namespace quiverion
