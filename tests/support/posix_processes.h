#pragma once

#include <sys/types.h>

#include "support/program.h"

/// Running programs and signals to them.
namespace quiverion::cli {

/// Runs the program and kills it after so many seconds. False where it has come to its end by then.
bool KillProgram(const Workplace& place, const std::vector<std::string>& arguments, double seconds);

/// A running program whose standard output nobody takes: once the pipe is full, it stands still.
class StalledProgram {
 public:
  StalledProgram(const Workplace& place, const std::vector<std::string>& arguments);
  ~StalledProgram();
  StalledProgram(const StalledProgram&) = delete;
  StalledProgram& operator=(const StalledProgram&) = delete;

  /// Waits until it stands still in its output. False where it did not within a minute.
  bool WaitUntilStalled() const;

  /// Sends a signal and waits until it has been delivered.
  void Signal(int number) const;

  /// Takes all output and waits for the end.
  Outcome Finish();

 private:
  pid_t process_ = -1;
  int output_ = -1;
};

}  // namespace quiverion::cli
