#pragma once

#include <QObject>
#include <QString>
#include <QUndoStack>
#include <functional>

#include "macro/session.h"

namespace quiverion {

/// The last changes of the session's macro, to be undone and done again. It keeps what a change has removed and
/// inserted, not whole macros.
class MacroHistory : public QObject {
  Q_OBJECT

 public:
  static constexpr int kSteps = 100;

  /// The session must outlive the object.
  explicit MacroHistory(Session& session);

  /// Does `edit`, which may change the macro, as one step that is called `what` in the menu. Nothing is recorded if the
  /// macro is the same afterwards. An edit that throws is recorded as far as it got.
  void Edit(const QString& what, const std::function<void()>& edit);

  /// The same for a step of one movement: all steps with the same name and place until EndMovement are one.
  void Move(const QString& what, const std::function<void()>& edit);
  void EndMovement() { ++movement_; }

  /// Nothing if there is no such step.
  void Undo() { stack_.undo(); }
  void Redo() { stack_.redo(); }

  /// Nothing can be undone any more. Needed if the macro was changed otherwise.
  void Forget() { stack_.clear(); }

  const QUndoStack& Stack() const { return stack_; }

 signals:
  /// A step was undone or done again. `line` is the first one that it has changed, or the one after the last.
  void MacroRestored(int line);

 private:
  class Step;

  void Record(const QString& what, const std::function<void()>& edit, int movement);

  Session& session_;
  QUndoStack stack_;
  int movement_ = 0;
};

}  // namespace quiverion
