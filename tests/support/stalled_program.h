#pragma once

#include <memory>

#include "support/program.h"

namespace quiverion::cli {

/// The signals that ask the program to stop. On Windows, SIGINT represents Ctrl+C in its console.
std::vector<int> AbortSignals();

/// A running program whose standard output nobody reads: once the pipe is full, it stalls.
class StalledProgram {
 public:
  StalledProgram(const Workplace& place, const std::vector<std::string>& arguments);
  ~StalledProgram();
  StalledProgram(const StalledProgram&) = delete;
  StalledProgram& operator=(const StalledProgram&) = delete;

  /// Waits until it stalls in its output. False if it does not within a minute.
  bool WaitUntilStalled() const;

  /// Sends a signal and waits until it has been delivered.
  void Signal(int number) const;

  /// Reads all output and waits for the end.
  Outcome Finish();

 private:
  struct Running;
  std::unique_ptr<Running> running_;
};

}  // namespace quiverion::cli
