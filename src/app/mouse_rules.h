#pragma once

#include <QAbstractItemView>
#include <QMouseEvent>
#include <functional>
#include <utility>

namespace quiverion {

/// Calls `action` when the right mouse button is released over a list. The button does not change the selection.
class RightButton : public QObject {
 public:
  RightButton(QAbstractItemView& list, std::function<void()> action) : QObject(&list), action_(std::move(action)) {
    list.viewport()->installEventFilter(this);
  }

  bool eventFilter(QObject* /*viewport*/, QEvent* event) override {
    const QEvent::Type type = event->type();
    const bool ofButton =
        type == QEvent::MouseButtonPress || type == QEvent::MouseButtonDblClick || type == QEvent::MouseButtonRelease;
    if (!ofButton || static_cast<QMouseEvent*>(event)->button() != Qt::RightButton) return false;
    if (type == QEvent::MouseButtonRelease) action_();
    return true;
  }

 private:
  std::function<void()> action_;
};

/// Keeps the wheel from changing a closed combo box that the mouse happens to be over.
class NoWheel : public QObject {
 public:
  using QObject::QObject;

  bool eventFilter(QObject* /*box*/, QEvent* event) override { return event->type() == QEvent::Wheel; }
};

}  // namespace quiverion
