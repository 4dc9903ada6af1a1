#include "dialogs/parameters/parameter_window.h"

#include "dialogs/parameters/parameter_editing.h"
#include "messages/system_error.h"
#include "platform/text/numbers.h"

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
