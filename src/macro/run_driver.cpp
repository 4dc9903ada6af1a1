#include "macro/run_driver.h"

#include <cmath>

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

class Run {
 public:
  explicit Run(Session& session) : session_(session), context_(session.context) {
    progress_.fileCount = session.SelectedFileCount();
  }

  void Execute() {
    context_.ui.RunStarted(progress_);
    const float start = context_.clock.SecondsSinceMidnight();
    context_.userAbortRequested = false;
    context_.runHadError = false;
    for (const std::string& name : session_.selectedFiles) {
      ++progress_.currentFile;
      RunFile(name);
      if (context_.userAbortRequested) break;
      progress_.filesDone = progress_.currentFile;
      ShowProgress();
    }
    context_.ui.RunEnded();
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
    WriteTitle(context_.log, progress_.fileName);
    Yield();
    context_.abortCurrentFile = false;
    LoadStep(context_, session_.inputDirectory + name);
    for (const MacroEvent& event : session_.macro) {
      if (context_.abortCurrentFile) break;
      if (!RunCommand(event, name)) break;
    }
    if (context_.abortCurrentFile) context_.runHadError = true;
  }

  // False if the user has asked to abort: the command was not started.
  bool RunCommand(const MacroEvent& event, const std::string& name) {
    const CommandRow* const row = FindStep(context_, event);
    if (!context_.abortCurrentFile) progress_.event = MacroEventDescription(event.EventId(), true);
    progress_.errorOccurred = progress_.errorOccurred || context_.runHadError;
    ShowProgress();
    Yield();
    if (context_.userAbortRequested) return false;
    RunStep(row, {context_, event, session_.inputDirectory, name});
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
  RunProgress progress_;
};

}  // namespace

std::string DurationText(float seconds) {
  if (!(seconds > 0)) return {};
  const int minutes = static_cast<int>(std::nearbyint(seconds - 0.5f)) / 60;
  const std::string rest = FormatNumber(seconds - static_cast<float>(minutes * 60)) + " s\r\n";
  return minutes > 0 ? "\r\nDauer: " + std::to_string(minutes) + " min " + rest : "\r\nDauer: " + rest;
}

void RunMacro(Session& session) {
  Run(session).Execute();
}

}  // namespace quiverion
