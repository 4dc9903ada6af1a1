#include "dialogs/widgets/guarded.h"

#include "messages/system_error.h"

namespace quiverion {

void Guarded(UserInterface& messages, const std::function<void()>& action) {
  try {
    action();
  } catch (const std::exception& error) {
    messages.Ask({.title = "QuiverionSeries", .text = ErrorText(AsSystemError(error))});
  }
}

}  // namespace quiverion
