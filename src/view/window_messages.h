#pragma once

#include "dialogs/widgets/message_box.h"
#include "messages/silent_user_interface.h"

namespace quiverion {

/// Message boxes over a window, for everything that is no run.
class WindowMessages : public SilentUserInterface {
 public:
  /// The window must outlive the object.
  explicit WindowMessages(QWidget& window) : window_(window) {}

  MessageAnswer Ask(const Message& box) override { return ShowMessageBox(&window_, box); }

 private:
  QWidget& window_;
};

}  // namespace quiverion
