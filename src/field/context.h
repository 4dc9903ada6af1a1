#pragma once

#include "field/buffer_field.h"
#include "field/vector_field.h"
#include "log/run_log.h"
#include "platform/clock.h"
#include "platform/file_system.h"
#include "platform/user_interface.h"

namespace quiverion {

/// What operations work on: the one current field, the buffer field, the flags of the run and the services. Plain data; a
/// function that takes a Context may log, ask, fail and set flags, a function that takes a VectorField only
/// computes.
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

  bool abortCurrentFile = false;    // skip the rest of the commands for this file
  bool runHadError = false;         // the run has seen an error or a warning
  bool userAbortRequested = false;  // end the run before the next command
};

}  // namespace quiverion
