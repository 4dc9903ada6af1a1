#include <optional>
#include <unordered_set>

#include "cli/commands.h"
#include "cli/services.h"
#include "log/log_writers.h"
#include "macro/command_catalogue.h"
#include "macro/log_messages.h"
#include "macro/macro_file.h"
#include "macro/pre_run_checks.h"
#include "macro/series_files.h"
#include "messages/system_error.h"
#include "platform/files/paths.h"
#include "platform/files/result_file.h"
#include "platform/process/environment.h"
#include "platform/text/text.h"

namespace quiverion::cli {
namespace {

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

// Adds the files of one INPUT; `known` are the keys of the files before. False if it is in another directory.
bool AddInput(Session& session, std::unordered_set<std::string>& known, const std::string& input) {
  const std::string path = AbsolutePath(input);
  const bool isDirectory = session.context.files.IsDirectory(path);
  const std::string directory = isDirectory ? WithSeparator(path) : DirectoryPrefixOf(path);
  if (session.inputDirectory.empty()) session.inputDirectory = directory;
  if (!IsSameFile(session.inputDirectory, directory)) return false;
  std::vector<std::string> names;
  if (isDirectory) {
    names = ListSeriesFiles(session.context.files, directory);
  } else {
    names.emplace_back(FileNameOf(path));
  }
  for (std::string& name : names) {
    // A file that is named twice counts once.
    if (known.insert(FileNameKey(name)).second) session.selectedFiles.push_back(std::move(name));
  }
  return true;
}

// Adds all inputs. Reports an input that is wrong and returns the exit code.
int AddInputs(Services& services, const std::vector<std::string>& inputs) {
  std::unordered_set<std::string> known;
  for (const std::string& input : inputs) {
    bool isAdded = false;
    if (const auto failure = Attempt([&] { isAdded = AddInput(services.session, known, input); })) {
      services.terminal.PrintError("'" + input + "': " + ErrorText(failure->error) + "\n");
      return kFailed;
    }
    if (isAdded) continue;
    services.terminal.PrintError("Alle Eingabedateien müssen in einem Verzeichnis liegen: '" + input + "'\n");
    return kUsage;
  }
  return kDone;
}

// The macro, or a file that it reads or appends to, if the log has the same path and would replace it. Results are not
// checked.
std::optional<std::string> FileThatLogWouldReplace(const RunOptions& options, const Session& session) {
  std::vector<std::string> paths = {options.macro};
  for (const MacroEvent& event : session.macro) {
    for (const Parameter& parameter : ParametersOf(event.EventId())) {
      const bool isPath = parameter.role == FileRole::reads || parameter.role == FileRole::appends;
      if (isPath && event.Find(parameter.key) != nullptr) paths.push_back(event.Text(parameter.key));
    }
  }
  for (std::string& path : paths) {
    if (!path.empty() && IsSameFile(AbsolutePath(path), AbsolutePath(options.log))) return std::move(path);
  }
  return std::nullopt;
}

}  // namespace

int RunSeries(const RunOptions& options) {
  Services services(options.onProblem);
  Session& session = services.session;
  session.context.decimalSeparator = options.decimalSeparator;
  if (const int code = AddInputs(services, options.inputs); code != kDone) return code;
  if (!LoadMacroFile(session, options.macro)) {
    services.terminal.PrintError("Makrodatei: '" + options.macro + "'\n");
    return kFailed;
  }

  if (const auto lost = options.log.empty() ? std::nullopt : FileThatLogWouldReplace(options, session)) {
    services.terminal.PrintError("Die Log-Datei ist eine Datei des Laufs selbst: '" + *lost + "'\n");
    return kUsage;
  }

  TerminalWriter output([&](std::string_view bytes) { services.terminal.Print(bytes); },
                        IsTerminal(StandardStream::output));
  services.log.Attach(output);
  std::optional<LogFile> logFile;
  // Opened before the first file is processed, so that a log that cannot be written is noticed at once and not after
  // hours. Opened after the checks, because a run that they refuse must write nothing.
  const auto openLog = [&] {
    if (!options.log.empty()) logFile.emplace(*services.files, services.log, options.log);
    CatchAbortRequests();
  };
  bool started = false;
  if (const auto failure = Attempt([&] { started = StartRun(session, openLog); })) {
    services.terminal.Ask(LogNotSaved(options.log, failure->error));
    return kFailed;
  }
  if (!started) return kRefused;
  services.log.Flush();
  const int code = services.Outcome();
  if (!logFile) return code;
  if (const auto failure = Attempt([&] { logFile->Save(); })) {
    services.terminal.Ask(LogNotSaved(options.log, failure->error));
    return code == kDone ? kFailed : code;
  }
  return code;
}

}  // namespace quiverion::cli
