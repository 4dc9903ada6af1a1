#pragma once

#include "messages/user_interface.h"

namespace quiverion {

/// For work without anybody to ask, such as loading a file for a picture: every question is answered by its last
/// button, progress is not shown.
class SilentUserInterface : public UserInterface {
 public:
  MessageAnswer Ask(const Message& /*box*/) override { return MessageAnswer::cancel; }
  void RunStarted(const RunProgress& /*progress*/) override {}
  void ShowProgress(const RunProgress& /*progress*/) override {}
  void RunEnded() override {}
  void ComputationStarted() override {}
  void ShowComputation(std::int64_t /*done*/, std::int64_t /*total*/) override {}
  void ComputationEnded() override {}
  bool Yield() override { return false; }
};

}  // namespace quiverion
