#include "cli/run_files.h"

#include <optional>
#include <utility>

#include "log/log_writers.h"
#include "macro/command_catalogue.h"
#include "macro/log_messages.h"
#include "platform/files/paths.h"
#include "platform/process/environment.h"

namespace quiverion::cli {
namespace {

// The macro, or a file that it reads or appends to, if `path` is the same and would replace it. Results are not
// checked.
std::optional<std::string> FileThatWouldBeReplaced(const std::string& path, const RunOptions& options,
                                                   const Session& session) {
  std::vector<std::string> paths = {options.macro};
  if (path != options.log) paths.push_back(options.log);
  for (const MacroEvent& event : session.macro) {
    for (const Parameter& parameter : ParametersOf(event.EventId())) {
      const bool isPath = parameter.role == FileRole::reads || parameter.role == FileRole::appends;
      if (isPath && event.Find(parameter.key) != nullptr) paths.push_back(event.Text(parameter.key));
    }
  }
  for (std::string& known : paths) {
    if (!known.empty() && IsSameFile(AbsolutePath(known), AbsolutePath(path))) return std::move(known);
  }
  return std::nullopt;
}

}  // namespace

// The log as a file, in addition to standard output. A failure is kept until the end, and the run continues.
class LogFile {
 public:
  LogFile(FileSystem& files, RunLog& log, const std::string& path) : log_(log), file_(files, nullptr, path) {
    const ByteConsumer consumer = [this](std::string_view bytes) { Guarded([&] { file_.Write(bytes); }); };
    if (ExtensionOf(path) == "RTF") {
      rtf_.emplace(consumer);
      log_.Attach(*rtf_);
    } else {
      plain_.emplace(consumer);
      log_.Attach(*plain_);
    }
  }
  LogFile(const LogFile&) = delete;
  LogFile& operator=(const LogFile&) = delete;
  ~LogFile() {
    if (rtf_) log_.Detach(*rtf_);
    if (plain_) log_.Detach(*plain_);
  }

  // Puts the file in its place. Throws the SystemError of the first write that failed.
  void Save() {
    if (rtf_) rtf_->Finish();
    if (plain_) plain_->HandOver();
    Guarded([&] { file_.Commit(); });
    if (failure_) throw failure_->error;
  }

 private:
  template <class Action>
  void Guarded(Action action) {
    if (!failure_) failure_ = Attempt(action);
  }

  RunLog& log_;
  ResultFile file_;
  std::optional<RtfWriter> rtf_;
  std::optional<PlainTextWriter> plain_;
  std::optional<Failure> failure_;
};

bool CheckWrittenFiles(Services& services, const RunOptions& options) {
  const std::pair<const std::string*, std::string_view> written[] = {{&options.log, "Log-Datei"},
                                                                     {&options.table, "Tabelle"}};
  for (const auto& [path, name] : written) {
    const auto lost = path->empty() ? std::nullopt : FileThatWouldBeReplaced(*path, options, services.session);
    if (!lost) continue;
    services.terminal.PrintError("Die " + std::string(name) + " ist eine Datei des Laufs selbst: '" + *lost + "'\n");
    return false;
  }
  return true;
}

RunFiles::RunFiles(Services& services, const RunOptions& options) : services_(services), options_(options) {
  if (!options.table.empty()) table_.emplace(services.log);
}

RunFiles::~RunFiles() = default;

void RunFiles::Open() {
  if (!options_.log.empty()) logFile_ = std::make_unique<LogFile>(*services_.files, services_.log, options_.log);
  opensTable_ = true;
  if (table_) tableFile_.emplace(*services_.files, nullptr, options_.table);
}

Message RunFiles::NotOpened(const SystemError& error) const {
  return opensTable_ && table_ ? TableNotSaved(options_.table, error) : LogNotSaved(options_.log, error);
}

bool RunFiles::Save() {
  const auto logFailure = Attempt([&] {
    if (logFile_) logFile_->Save();
  });
  if (logFailure) services_.terminal.Ask(LogNotSaved(options_.log, logFailure->error));
  const auto tableFailure = Attempt([&] {
    if (!table_) return;
    WriteTable(table_->Rows(), services_.session.context.decimalSeparator,
               [this](std::string_view bytes) { tableFile_->Write(bytes); });
    tableFile_->Commit();
  });
  if (tableFailure) services_.terminal.Ask(TableNotSaved(options_.table, tableFailure->error));
  return !logFailure && !tableFailure;
}

}  // namespace quiverion::cli
