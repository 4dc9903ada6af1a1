#pragma once

#include <memory>
#include <string>

#include "cli/exit_code.h"
#include "cli/terminal.h"
#include "macro/session.h"

namespace quiverion::cli {

/// Everything a command needs: the services of this machine and a session on them.
struct Services {
  explicit Services(MessageAnswer onProblem = MessageAnswer::abort) : terminal(onProblem) {}

  std::unique_ptr<FileSystem> files = MakeSystemFileSystem();
  Terminal terminal;
  RunLog log;
  SystemClock clock;
  Session session{*files, terminal, log, clock};

  /// The exit code of a command that has printed its result.
  int Done() const { return terminal.OutputFailed() ? kFailed : kDone; }

  /// The exit code of a command that has failed with a message. Adds the name of the collection, which the message
  /// lacks.
  int FailedOn(const std::string& collectionPath) {
    terminal.PrintError("Kollektion: '" + collectionPath + "'\n");
    return kFailed;
  }

  /// The exit code after operations that report through the flags of the context.
  int Outcome() const {
    if (session.context.userAbortRequested) return kAborted;
    return session.context.runHadError ? kFailed : Done();
  }
};

}  // namespace quiverion::cli
