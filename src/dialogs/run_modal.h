#pragma once

#include <QDialog>

namespace quiverion {

/// Shows a dialog until it is done and returns its result. It blocks the windows it stands over; the help, which stands
/// over none, can be read meanwhile.
inline int RunModal(QDialog& dialog) {
  dialog.setWindowModality(Qt::WindowModal);
  return dialog.exec();
}

}  // namespace quiverion
