#pragma once

#include <cstdint>

#include "field/buffer_field.h"
#include "field/vector_field.h"
#include "log/run_log.h"
#include "messages/user_interface.h"
#include "platform/files/file_system.h"
#include "platform/process/clock.h"

namespace quiverion {

/// What operations work on: the current field, the buffer field, the flags of the run and the services. Plain data. A
/// function that takes a Context may log, ask, fail and set flags; a function that takes a VectorField only computes.
struct Context {
  Context(FileSystem& fileSystem, UserInterface& userInterface, RunLog& runLog, const Clock& systemClock)
      : files(fileSystem), ui(userInterface), log(runLog), clock(systemClock) {}

  FileSystem& files;
  UserInterface& ui;
  RunLog& log;
  const Clock& clock;
  char decimalSeparator = '.';  // of numbers written in the user's format

  VectorField field;
  BufferField buffer;  // outlives the files of a run, and the run

  std::int64_t vortexCentres = 0;  // found by the last search

  bool abortCurrentFile = false;    // skip the remaining commands for this file
  bool runHadError = false;         // the run has seen an error or a warning
  bool userAbortRequested = false;  // end the run before the next command

  bool busy = false;  // an entry point is running; see BusyGuard
};

/// Keeps a second entry point from starting during a yield: each creates a guard first, and returns if it has not
/// entered.
class BusyGuard {
 public:
  explicit BusyGuard(Context& context) : context_(context), entered_(!context.busy) { context.busy = true; }
  ~BusyGuard() {
    if (entered_) context_.busy = false;
  }
  BusyGuard(const BusyGuard&) = delete;
  BusyGuard& operator=(const BusyGuard&) = delete;

  bool Entered() const { return entered_; }

 private:
  Context& context_;
  bool entered_;
};

}  // namespace quiverion
