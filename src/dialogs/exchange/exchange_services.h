#pragma once

#include <functional>
#include <string>
#include <vector>

#include "messages/user_interface.h"
#include "platform/files/file_system.h"
#include "platform/process/clock.h"

namespace quiverion {

/// What the windows for files of other programs need. The references must outlive them; `files` and `clock` are used
/// from other threads, too.
struct ExchangeServices {
  FileSystem& files;
  const Clock& clock;
  UserInterface& messages;
};

}  // namespace quiverion
