#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "macro/run_observer.h"
#include "operations/kernels/field_changes.h"

namespace quiverion {

enum class FileResult : std::uint8_t { done, warning, failed, aborted, notRun };

/// "fertig", "Warnung", "Fehler", "abgebrochen", "nicht bearbeitet"
std::string_view WordOf(FileResult result);

/// What happened to one file of a run. Counts of vectors are in grid points; "valid" is a status > 0.
struct FileRow {
  std::string name;
  FileResult result = FileResult::notRun;
  std::int32_t errors = 0;                  // errors and warnings in the log
  std::string message = {};                 // of the first error, or of the first warning if there is no error
  std::optional<std::int64_t> validBefore;  // after loading; none if the file could not be loaded
  std::optional<std::int64_t> validAfter;
  std::int64_t rejected = 0;
  std::int64_t filled = 0;
  std::optional<std::int64_t> vortices;  // centres found by the last search
  double seconds = 0.0;
  std::uint64_t logPlace = 0;  // bytes of the run's log before the message or, without one, before the file's title

  bool HasErrors() const { return errors > 0; }
};

/// Notices errors and warnings in a log by their marks.
class ErrorSink : public LogSink {
 public:
  void Write(std::string_view text, const LogFormat& format) override;

  /// From now on for this row; null: for none.
  void WatchFor(FileRow* row);

  /// What the log says of the row's file.
  FileResult Result() const;

 private:
  FileRow* row_ = nullptr;
  bool hasError_ = false;         // the row has the message of an error, which a later one does not replace
  bool collectsMessage_ = false;  // the next lines belong to the message
  std::uint64_t bytes_ = 0;
};

/// A table of a run, a row per selected file. The rows are complete after RunEnds; after an abort the files that are
/// left are in it as "nicht bearbeitet".
class RunTable : public RunObserver {
 public:
  explicit RunTable(RunLog& log) : log_(log) {}
  ~RunTable() override { log_.Detach(errors_); }
  RunTable(const RunTable&) = delete;
  RunTable& operator=(const RunTable&) = delete;

  const std::vector<FileRow>& Rows() const { return rows_; }
  std::vector<FileRow> TakeRows() { return std::move(rows_); }

  void RunBegins(const Session& session) override;
  void FileBegins(std::size_t index) override;
  void Loaded(const Context& context) override;
  void Executing(const CommandRow* row, const Context& context) override;
  void Executed(const CommandRow* row, const Context& context) override;
  void FileEnds(bool interrupted) override;
  void RunEnds() override;

 private:
  RunLog& log_;
  ErrorSink errors_;
  std::vector<FileRow> rows_;
  FileRow* row_ = nullptr;
  ValidFlags valid_;    // of the field, as far as commands were counted
  bool moved_ = false;  // since then vectors have moved to other places
  std::chrono::steady_clock::time_point begun_;
};

inline constexpr std::size_t kTableColumns = 10;

/// The captions of the columns, in German.
std::span<const std::string_view> TableCaptions();

/// A cell as text; empty if there is no value.
std::string TableCell(const FileRow& row, std::size_t column, char decimalSeparator);

/// "3000 Dateien, 3 mit Fehlern"
std::string ErrorCountText(std::span<const FileRow> rows);

/// The table as CSV: a line of captions and a line per row, "\r\n" at the end of each. Columns are separated by ";" and
/// quoted if necessary. UTF-8 with a byte order mark, without which spreadsheets take it for another character set.
/// `write` gets it in blocks.
void WriteTable(std::span<const FileRow> rows, char decimalSeparator,
                const std::function<void(std::string_view)>& write);

}  // namespace quiverion
