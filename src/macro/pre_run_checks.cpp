#include "macro/pre_run_checks.h"

#include "macro/command_catalogue.h"
#include "macro/run_driver.h"
#include "platform/text/numbers.h"
#include "platform/text/text.h"

namespace quiverion {
namespace {

constexpr std::string_view kMacroErrorTitle = "QuiverionSeries  -  Fehler im Makro";

// Asks until the file can be opened or the user ignores it. False: abort.
bool CheckReadable(Context& context, const std::string& path, std::string_view beforePath) {
  while (!FileExists(context.files, path)) {
    Message box;
    box.title = kMacroErrorTitle;
    box.text = std::string(beforePath) + std::string(TrimBlanks(path)) +
               "' kann nicht geöffnet werden!\r\n"
               "Datei nicht vorhanden, beschädigt oder wird bereits verwendet.";
    box.buttons = MessageButtons::abortRetryIgnore;
    const MessageAnswer answer = context.ui.Ask(box);
    if (answer == MessageAnswer::ignore) break;
    if (answer != MessageAnswer::retry) return false;
  }
  return true;
}

bool CheckCommands(Session& session, std::int64_t& kilobytesPerFile) {
  for (const MacroEvent& event : session.macro) {
    const CommandRow* const row = FindCommand(event.EventId());
    if (row == nullptr) continue;
    kilobytesPerFile += row->outputKilobytes;
    for (const Parameter& parameter : row->parameters) {
      // A damaged macro may lack the name; the command itself reports that.
      if (parameter.role != FileRole::reads || event.Find(parameter.key) == nullptr) continue;
      if (!CheckReadable(session.context, event.Path(parameter.key), "Die in den Buffer einzuladende Datei '")) {
        return false;
      }
    }
  }
  return true;
}

double FreeKilobytes(Session& session) {
  return static_cast<double>(session.context.files.FreeDiskBytes(session.inputDirectory)) / 1024.0;
}

bool CheckDiskSpace(Session& session, std::int64_t needed) {
  const auto enough = [needed](double freeKilobytes) { return freeKilobytes >= static_cast<double>(needed); };
  for (double freeKilobytes = FreeKilobytes(session); !enough(freeKilobytes);) {
    Message box;
    box.title = "QuiverionSeries  -  Wenig Festplattenspeicher";
    box.text = "Auf dem Laufwerk " + AsciiUpper(session.inputDirectory.substr(0, 1)) +
               ": ist eventuell zu wenig Speicherplatz frei!\r\n"
               "      Benötigt: " +
               std::to_string(needed) + " KB  (etwa)\r\n      Vorhanden: " + FormatNumber(freeKilobytes) +
               " KB\r\n\r\n"
               "Wenn die zu speichernden Dateien keine alten Dateien ersetzen, sondern "
               "vollkommen neu angelegt werden, können eventuell nicht alle Dateien gespeichert werden!"
               "Sie sollten erst etwas Speicherplatz freimachen!";
    box.buttons = MessageButtons::abortRetryIgnore;
    const MessageAnswer answer = session.context.ui.Ask(box);
    if (answer == MessageAnswer::ignore) return true;
    if (answer != MessageAnswer::retry) return false;
    freeKilobytes = FreeKilobytes(session);
  }
  return true;
}

bool Refuse(Session& session, std::string title, std::string text, MessageIcon icon) {
  session.context.ui.Ask({.title = std::move(title), .text = std::move(text), .icon = icon});
  return false;
}

}  // namespace

bool PreRunChecks(Session& session) {
  for (const std::string& name : session.selectedFiles) {
    if (!CheckReadable(session.context, session.inputDirectory + name, "Die Datei '")) return false;
  }
  std::int64_t kilobytesPerFile = 0;
  if (!CheckCommands(session, kilobytesPerFile)) return false;
  if (kilobytesPerFile > 0 && session.context.files.KindOfDrive(session.inputDirectory) == DriveKind::cdRom) {
    return Refuse(session, std::string(kMacroErrorTitle),
                  "Dateien, die sich auf einer CD befinden, können nicht bearbeitet werden!", MessageIcon::warning);
  }
  return CheckDiskSpace(session, session.SelectedFileCount() * kilobytesPerFile);
}

bool StartRun(Session& session, const std::function<void()>& beforeRun, RunObserver* observer) {
  const BusyGuard guard(session.context);
  if (!guard.Entered()) return false;
  if (session.selectedFiles.empty()) {
    return Refuse(session, "QuiverionSeries", "Sie müssen mindestens eine Datei auswählen!", MessageIcon::information);
  }
  if (session.macro.empty()) {
    return Refuse(session, "QuiverionSeries", "Sie müssen wenigstens einen Makrobefehl wählen!",
                  MessageIcon::information);
  }
  if (!PreRunChecks(session)) return false;
  if (beforeRun) beforeRun();
  RunMacro(session, observer);
  return true;
}

}  // namespace quiverion
