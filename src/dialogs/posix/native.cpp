#include "dialogs/widgets/native.h"

namespace quiverion {

void SetSaveFilters(QFileDialog& dialog, const QStringList& filters) {
  dialog.setNameFilters(filters);
}

bool CanAskHowToPrint(const QPrinter& /*printer*/) {
  return true;
}

void ChooseFonts() {}

}  // namespace quiverion
