#pragma once

#include <QWidget>

#include "platform/user_interface.h"

namespace quiverion {

/// Shows a message box over `parent` and returns the answer. Closing it in another way is the answer that changes least:
/// No, Cancel or Abort.
MessageAnswer ShowMessageBox(QWidget* parent, const Message& message);

}  // namespace quiverion
