#pragma once

#include <functional>

#include "messages/user_interface.h"

namespace quiverion {

/// Runs the reaction to an event. Whatever it throws is shown in a message box and never reaches the event loop.
void Guarded(UserInterface& messages, const std::function<void()>& action);

}  // namespace quiverion
