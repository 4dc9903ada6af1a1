#include "dialogs/widgets/guarded.h"

#include "messages/failure.h"

namespace quiverion {

void Guarded(UserInterface& messages, const std::function<void()>& action) {
  if (const auto failure = Attempt(action)) {
    messages.Ask({.title = "QuiverionSeries", .text = ErrorText(failure->error)});
  }
}

}  // namespace quiverion
