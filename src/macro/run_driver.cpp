#include "macro/run_driver.h"

#include <cmath>
#include <utility>

#include "log/log_lines.h"
#include "macro/file_steps.h"
#include "platform/text/numbers.h"
#include "platform/text/text.h"

namespace quiverion {
namespace {

void WriteTitle(RunLog& log, std::string_view text) {
  log.WriteLogLine(MakeTitleLine(text) + "\r\n");
}

std::string_view Verdict(const Context& context) {
  if (context.runHadError) {
    return context.userAbortRequested ? "Makro-Ausführung frühzeitig ABGEBROCHEN nach FEHLER"
                                      : "Makro-Ausführung FEHLERHAFT beendet";
  }
  return context.userAbortRequested ? "Makro-Ausführung frühzeitig ABGEBROCHEN"
                                    : "Makro-Ausführung erfolgreich beendet";
}

// For a run that nobody watches.
class NoObserver : public RunObserver {
  void RunBegins(const Session& /*session*/) override {}
  void FileBegins(std::size_t /*index*/) override {}
  void Loaded(const Context& /*context*/) override {}
  void Executing(const CommandRow* /*row*/, const Context& /*context*/) override {}
  void Executed(const CommandRow* /*row*/, const Context& /*context*/) override {}
  void FileEnds(bool /*interrupted*/) override {}
  void RunEnds() override {}
};

class Run {
 public:
  Run(Session& session, RunObserver& observer) : session_(session), context_(session.context), observer_(observer) {
    progress_.fileCount = session.SelectedFileCount();
  }

  void Execute() {
    context_.ui.RunStarted(progress_);
    const float start = context_.clock.SecondsSinceMidnight();
    context_.userAbortRequested = false;
    context_.runHadError = false;
    observer_.RunBegins(session_);
    for (const std::string& name : session_.selectedFiles) {
      ++progress_.currentFile;
      RunFile(name);
      if (context_.userAbortRequested) break;
      progress_.filesDone = progress_.currentFile;
      ShowProgress();
    }
    context_.ui.RunEnded();
    observer_.RunEnds();
    WriteTitle(context_.log, Verdict(context_));
    const std::string duration = DurationText(context_.clock.SecondsSinceMidnight() - start);
    if (!duration.empty()) context_.log.WriteLogLine(duration);
    context_.log.Flush();
  }

 private:
  void RunFile(const std::string& name) {
    progress_.fileName = TrimBlanks(name);
    progress_.event = "Laden der Orginaldatei";
    ShowProgress();
    observer_.FileBegins(static_cast<std::size_t>(progress_.currentFile - 1));
    WriteTitle(context_.log, progress_.fileName);
    Yield();
    context_.abortCurrentFile = false;
    const bool hadError = std::exchange(context_.runHadError, false);  // for this file alone
    LoadStep(context_, session_.inputDirectory + name);
    observer_.Loaded(context_);
    bool interrupted = false;
    for (const MacroEvent& event : session_.macro) {
      if (context_.abortCurrentFile) break;
      interrupted = !RunCommand(event, name);
      if (interrupted) break;
    }
    if (context_.abortCurrentFile) context_.runHadError = true;
    progress_.filesWithErrors += context_.runHadError ? 1 : 0;
    context_.runHadError = context_.runHadError || hadError;
    observer_.FileEnds(interrupted);
  }

  // False if the user has asked to abort: the command was not started.
  bool RunCommand(const MacroEvent& event, const std::string& name) {
    const CommandRow* const row = FindStep(context_, event);
    if (!context_.abortCurrentFile) progress_.event = MacroEventDescription(event.EventId(), true);
    progress_.errorOccurred = progress_.errorOccurred || context_.runHadError || progress_.filesWithErrors > 0;
    ShowProgress();
    Yield();
    if (context_.userAbortRequested) return false;
    observer_.Executing(row, context_);
    RunStep(row, {context_, event, session_.inputDirectory, name});
    observer_.Executed(row, context_);
    return true;
  }

  void ShowProgress() {
    context_.log.Flush();
    context_.ui.ShowProgress(progress_);
  }

  void Yield() {
    context_.log.Flush();
    if (context_.ui.Yield()) context_.userAbortRequested = true;
  }

  Session& session_;
  Context& context_;
  RunObserver& observer_;
  RunProgress progress_;
};

}  // namespace

std::string DurationText(float seconds) {
  if (!(seconds > 0)) return {};
  const int minutes = static_cast<int>(std::nearbyint(seconds - 0.5f)) / 60;
  const std::string rest = FormatNumber(seconds - static_cast<float>(minutes * 60)) + " s\r\n";
  return minutes > 0 ? "\r\nDauer: " + std::to_string(minutes) + " min " + rest : "\r\nDauer: " + rest;
}

void RunMacro(Session& session, RunObserver* observer) {
  NoObserver nobody;
  Run(session, observer == nullptr ? nobody : *observer).Execute();
}

}  // namespace quiverion
