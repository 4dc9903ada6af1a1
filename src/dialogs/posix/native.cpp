#include "dialogs/widgets/native.h"

namespace quiverion {

void SetSaveFilters(QFileDialog& dialog, const QStringList& filters) {
  dialog.setNameFilters(filters);
}

bool CanAskHowToPrint(const QPrinter& /*printer*/) {
  return true;
}

void ChooseFonts() {}

void DrawWithoutDisplay() {
  qputenv("QT_QPA_PLATFORM", "offscreen");
}

}  // namespace quiverion
