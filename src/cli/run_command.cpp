#include <optional>
#include <unordered_set>

#include "cli/commands.h"
#include "cli/run_files.h"
#include "cli/services.h"
#include "log/log_writers.h"
#include "macro/macro_file.h"
#include "macro/pre_run_checks.h"
#include "macro/series_files.h"
#include "messages/system_error.h"
#include "platform/files/paths.h"
#include "platform/process/environment.h"
#include "platform/text/text.h"

namespace quiverion::cli {
namespace {

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

  if (!CheckWrittenFiles(services, options)) return kUsage;

  TerminalWriter output([&](std::string_view bytes) { services.terminal.Print(bytes); },
                        IsTerminal(StandardStream::output));
  services.log.Attach(output);
  RunFiles written(services, options);
  // After the checks, because a run that they refuse must write nothing.
  const auto open = [&] {
    written.Open();
    CatchAbortRequests();
  };
  bool started = false;
  if (const auto failure = Attempt([&] { started = StartRun(session, open, written.Observer()); })) {
    services.terminal.Ask(written.NotOpened(failure->error));
    return kFailed;
  }
  if (!started) return kRefused;
  services.log.Flush();
  const int code = services.Outcome();
  return written.Save() || code != kDone ? code : kFailed;
}

}  // namespace quiverion::cli
