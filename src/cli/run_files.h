#pragma once

#include <memory>
#include <optional>

#include "cli/commands.h"
#include "cli/services.h"
#include "macro/run_table.h"
#include "platform/files/result_file.h"

namespace quiverion::cli {

/// False, with a message, if the log or the table would replace the macro or a file that it reads or appends to.
/// Results are not checked.
bool CheckWrittenFiles(Services& services, const RunOptions& options);

class LogFile;

/// What a run writes besides its results, as the options say: the log and the table.
class RunFiles {
 public:
  RunFiles(Services& services, const RunOptions& options);
  ~RunFiles();

  /// Opens the files before the first input is processed, so that one that cannot be written is noticed at once and not
  /// after hours. Throws SystemError.
  void Open();

  /// Of the run; null if there is no table.
  RunObserver* Observer() { return table_ ? &*table_ : nullptr; }

  /// The message if Open has thrown.
  Message NotOpened(const SystemError& error) const;

  /// Puts the files in their places. False, with a message, if that failed.
  bool Save();

 private:
  Services& services_;
  const RunOptions& options_;
  std::optional<RunTable> table_;
  std::unique_ptr<LogFile> logFile_;
  std::optional<ResultFile> tableFile_;
  bool opensTable_ = false;
};

}  // namespace quiverion::cli
