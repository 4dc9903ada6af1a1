#pragma once

#include <QWidget>

#include "messages/user_interface.h"

namespace quiverion {

/// Shows a message box over `parent` and returns the answer. Closing it in another way is the answer that changes least:
/// No, Cancel or Abort.
MessageAnswer ShowMessageBox(QWidget* parent, const Message& message);

/// How wide a window must be so that its title is not cut.
int WidthOfTitle(const QWidget& window);

}  // namespace quiverion
