#pragma once

#include <QApplication>
#include <QDialog>

namespace quiverion {

/// Shows a dialog until it is done and returns its result. It blocks the windows below it. The help can be read
/// meanwhile, because no dialog is above it.
inline int RunModal(QDialog& dialog) {
  dialog.setWindowModality(Qt::WindowModal);
  const int result = dialog.exec();
  // A window manager may give the focus back before Qt has let go of the dialog, or of the names that are proposed over
  // it: keys would act in a window that does not know that it is active.
  QWidget* const below = dialog.parentWidget() == nullptr ? nullptr : dialog.parentWidget()->window();
  if (below != nullptr && below->isVisible() && !below->isMinimized()) below->activateWindow();
  return result;
}

/// True while a modal window is over the window of `widget`, possibly with others between them.
inline bool IsBehindDialog(const QWidget& widget) {
  for (const QWidget* const modal : QApplication::topLevelWidgets()) {
    if (!modal->isModal() || !modal->isVisible()) continue;
    for (const QWidget* below = modal->parentWidget(); below != nullptr; below = below->parentWidget()) {
      if (below->window() == widget.window()) return true;
    }
  }
  return false;
}

}  // namespace quiverion
