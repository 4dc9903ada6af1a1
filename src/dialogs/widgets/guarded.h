#pragma once

#include <functional>

#include "messages/user_interface.h"

namespace quiverion {

/// Runs what an event asks for: whatever it throws ends in a message box, never in the event loop.
void Guarded(UserInterface& messages, const std::function<void()>& action);

}  // namespace quiverion
