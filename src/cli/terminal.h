#pragma once

#include <chrono>
#include <string>
#include <string_view>

#include "messages/user_interface.h"

namespace quiverion::cli {

/// The user interface of the command line: results on standard output, messages and progress on standard error. Message
/// boxes are answered without asking: those of the pre-run checks as `onProblem` says, others with OK, Cancel or No.
class Terminal : public UserInterface {
 public:
  /// `onProblem`: the answer to the boxes of the pre-run checks, abort or ignore.
  explicit Terminal(MessageAnswer onProblem = MessageAnswer::abort);

  MessageAnswer Ask(const Message& message) override;
  void RunStarted(const RunProgress& progress) override;
  void ShowProgress(const RunProgress& progress) override;
  void RunEnded() override;
  void ComputationStarted() override;
  void ShowComputation(std::int64_t done, std::int64_t total) override;
  void ComputationEnded() override;
  bool Yield() override;

  void Print(std::string_view text);
  void PrintError(std::string_view text);

  /// True if not everything could be written to standard output (a closed pipe, a full disk).
  bool OutputFailed() const { return outputFailed_; }

 private:
  // True at most ten times a second.
  bool IsTimeForProgress();
  void WriteProgress(std::string_view text);
  void EraseProgress();

  using Time = std::chrono::steady_clock::time_point;

  MessageAnswer onProblem_;
  bool outputIsTerminal_;
  bool showProgress_;
  bool progressShown_ = false;
  bool insideLine_ = false;  // the log has an unfinished line on the same terminal, which the progress must not erase
  bool outputFailed_ = false;
  Time start_;
  Time lastShown_;
};

}  // namespace quiverion::cli
