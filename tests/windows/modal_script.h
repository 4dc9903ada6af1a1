#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QStyleOptionFrame>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <deque>
#include <functional>
#include <string>

#include "dialogs/widgets/qt_text.h"

namespace quiverion::test {

/// A control of a window by its object name. Fails the test if there is none of that type.
template <class Control>
Control& Find(const QWidget& window, const char* name) {
  auto* const control = window.findChild<Control*>(name);
  if (control == nullptr) throw std::runtime_error(std::string("no control ") + name);
  return *control;
}

inline void Press(const QWidget& window, const char* button) {
  Find<QAbstractButton>(window, button).click();
}

/// Replaces the text of a box by typing, like a user who has moved into it.
inline void Type(QWidget& window, const char* box, const char* text) {
  auto& edit = Find<QLineEdit>(window, box);
  edit.setFocus();
  edit.selectAll();
  QTest::keyClicks(&edit, text);
}

/// Fails the test if a visible label, button or box of a shown window is smaller than its text, or if a control that
/// takes the focus has neither a text nor a name for screen readers.
inline void ExpectReadable(const QWidget& window) {
  for (const auto* control : window.findChildren<QWidget*>()) {
    const QString name = control->objectName();
    // Parts that the widgets create themselves have no name.
    if (!control->isVisible() || name.isEmpty() || name.startsWith("qt_") ||
        qobject_cast<const QToolButton*>(control) != nullptr)
      continue;
    const auto* const button = qobject_cast<const QAbstractButton*>(control);
    if (button != nullptr || qobject_cast<const QLabel*>(control) != nullptr) {
      QSize needed = control->minimumSizeHint();
      if (control->hasHeightForWidth()) needed.setHeight(control->heightForWidth(control->width()));
      EXPECT_TRUE(control->width() >= needed.width() && control->height() >= needed.height()) << FromQt(name);
    }
    const bool isSilent =
        control->focusPolicy() == Qt::NoFocus || control->inherits("QSplitter") || control->inherits("QTabWidget");
    EXPECT_TRUE(isSilent || (button != nullptr && !button->text().isEmpty()) || !control->accessibleName().isEmpty())
        << control->metaObject()->className() << " " << FromQt(name);
  }
  for (const auto* box : window.findChildren<QLineEdit*>()) {
    QStyleOptionFrame option;
    option.initFrom(box);
    const int room = box->style()->subElementRect(QStyle::SE_LineEditContents, &option, box).width();
    EXPECT_GE(room, box->fontMetrics().horizontalAdvance(box->text())) << FromQt(box->objectName());
  }
}

/// Answers modal windows while the code under test waits for them: each step handles the next modal window. A window
/// that no step expects is closed and fails the test, and so does an unused step.
class ModalScript {
 public:
  ModalScript() {
    timer_.setInterval(5);
    QObject::connect(&timer_, &QTimer::timeout, [this] { Tick(); });
    timer_.start();
  }
  ~ModalScript() { EXPECT_TRUE(steps_.empty()) << "no window for " << steps_.front().className; }
  ModalScript(const ModalScript&) = delete;
  ModalScript& operator=(const ModalScript&) = delete;

  /// The next modal window is a `className`; `action` handles it.
  template <class Window = QDialog>
  void Expect(std::string className, std::function<void(Window&)> action) {
    steps_.push_back({std::move(className), [action](QWidget& window) { action(static_cast<Window&>(window)); }});
  }

  /// The next modal window is a message box, answered with `button`.
  void ExpectBox(QMessageBox::StandardButton button) {
    Expect<QMessageBox>("QMessageBox", [button](QMessageBox& box) { box.button(button)->click(); });
  }

  /// The next modal window is a file dialog; an empty path cancels it.
  void ExpectFile(std::string path, std::function<void(const QDialog&)> look = {}) {
    Expect<QDialog>("QFileDialog", [path, look](QDialog& dialog) {
      if (look) look(dialog);
      if (path.empty()) return dialog.reject();
      Find<QLineEdit>(dialog, "fileNameEdit").setText(PathToQt(path));
      QMetaObject::invokeMethod(&dialog, "accept");
    });
  }

  /// What the message boxes have said so far: "title|text" and the button that Enter presses, a line for each.
  std::string said;

  /// Called at every tick while no modal window is open.
  std::function<void()> idle;

 private:
  struct Step {
    std::string className;
    std::function<void(QWidget&)> action;
  };

  void Tick() {
    QWidget* const window = QApplication::activeModalWidget();
    if (window == nullptr || !window->isVisible()) {
      if (idle) idle();
      return;
    }
    const std::string expected = steps_.empty() ? "nothing" : steps_.front().className;
    if (expected != window->metaObject()->className()) {
      // The window of the previous step is still closing, or the wrong one has opened.
      if (++patience_ < 400) return;
      ADD_FAILURE() << window->metaObject()->className() << " '" << FromQt(window->windowTitle()) << "' in place of "
                    << expected;
      patience_ = 0;
      window->close();
      return;
    }
    patience_ = 0;
    if (const auto* const box = qobject_cast<QMessageBox*>(window)) {
      said += FromQt(box->windowTitle() + "|" + box->text() + "|" + box->defaultButton()->text()) + "\n";
    }
    // Not in the timer's own event, because the timer does not fire in the event loop of a window opened there.
    QMetaObject::invokeMethod(
        window, [window, step = std::move(steps_.front())] { Run(step, *window); }, Qt::QueuedConnection);
    steps_.pop_front();
  }

  static void Run(const Step& step, QWidget& window) {
    try {
      step.action(window);
    } catch (const std::exception& error) {
      ADD_FAILURE() << step.className << ": " << error.what();
      window.close();
    }
  }

  QTimer timer_;
  std::deque<Step> steps_;
  int patience_ = 0;
};

}  // namespace quiverion::test
