#pragma once

#include <cstddef>

#include "macro/command_catalogue.h"
#include "macro/session.h"

namespace quiverion {

/// Watches a run without changing it; called by the run driver. Nothing may throw.
class RunObserver {
 public:
  virtual ~RunObserver() = default;

  virtual void RunBegins(const Session& session) = 0;

  /// Before the title line of the file `index` (from 0) of the selected ones is logged.
  virtual void FileBegins(std::size_t index) = 0;

  /// The file has been loaded; `abortCurrentFile` is set if that failed.
  virtual void Loaded(const Context& context) = 0;

  /// The command begins. Menus and unknown commands have no row.
  virtual void Executing(const CommandRow* row, const Context& context) = 0;

  /// The command has ended; `abortCurrentFile` is set if it failed.
  virtual void Executed(const CommandRow* row, const Context& context) = 0;

  /// `interrupted`: commands are left, because the user has asked to abort.
  virtual void FileEnds(bool interrupted) = 0;

  /// After the last file, before the verdict is logged.
  virtual void RunEnds() = 0;
};

}  // namespace quiverion
