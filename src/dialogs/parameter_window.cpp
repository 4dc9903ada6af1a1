#include "dialogs/parameter_window.h"

#include "dialogs/parameter_editing.h"
#include "platform/numbers.h"
#include "platform/system_error.h"

namespace quiverion {

std::optional<double> ParameterWindow::NumberOf(FilteredLineEdit& box) {
  try {
    return ReadParameterNumber(box.Text());
  } catch (const SystemError&) {
    RefuseHugeNumber(messages_, box.Text());
    box.setFocus();
    return std::nullopt;
  }
}

}  // namespace quiverion
