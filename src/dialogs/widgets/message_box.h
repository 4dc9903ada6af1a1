#pragma once

#include <QWidget>

#include "messages/user_interface.h"

namespace quiverion {

/// Shows a message box over `parent` and returns the answer. Closing it without a button gives the answer that changes
/// least: No, Cancel or Abort.
MessageAnswer ShowMessageBox(QWidget* parent, const Message& message);

/// How wide a window must be for its title to fit.
int WidthOfTitle(const QWidget& window);

}  // namespace quiverion
