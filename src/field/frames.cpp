#include "field/frames.h"

#include <optional>

#include "platform/files/paths.h"

namespace quiverion {
namespace {

constexpr std::string_view kFileAborted = "    Die Bearbeitung der aktuellen Datei wird abgebrochen!";

}  // namespace

void FailSave(Context& context, std::string_view sentence, const std::exception& error) {
  LogLines(context.log, {kErrorMark, sentence, ErrorLine(AsSystemError(error))});
  context.runHadError = true;
}

void ShowErrorBox(Context& context, std::string_view title, std::string_view sentence, const std::exception& error) {
  context.ui.Ask(
      {.title = std::string(title), .text = std::string(sentence) + "\r\n\r\n" + ErrorText(AsSystemError(error))});
}

void WarnLostCharacters(Context& context, std::string_view text) {
  LogWarning(context, {"    Zeichen, die der Zeichensatz der Datei nicht kennt, werden als '?' gespeichert: '" +
                       std::string(text) + "'"});
}

void RequireBelow(const std::string& name) {
  if (!LeadsUpwards(name)) return;
  throw SystemError::Saying(ErrorNumber::pathAccess,
                            "Der Dateiname '" + name + "' führt aus dem Verzeichnis der Originaldatei hinaus!");
}

std::string WriteFailedSentence(const std::string& path) {
  return "    Die Datei '" + path +
         "' kann nicht gespeichert werden, da während des Schreibens folgender Fehler aufgetreten ist:";
}

void LogWarning(Context& context, std::initializer_list<std::string_view> lines) {
  LogLines(context.log, {kWarningMark});
  LogLines(context.log, lines);
  context.runHadError = true;
}

void FailLoad(Context& context, std::initializer_list<std::string_view> lines) {
  LogLines(context.log, {kErrorMark});
  LogLines(context.log, lines);
  LogLines(context.log, {kFileAborted});
  context.abortCurrentFile = true;
}

void RunLoadFrame(Context& context, const std::string& path, const std::function<void(InputFile&)>& read) {
  std::unique_ptr<InputFile> file;
  try {
    file = context.files.OpenForReading(path);
  } catch (const std::exception& error) {
    FailLoad(context, {"    Die aktuelle Datei kann nicht geöffnet werden, da folgender Fehler aufgetreten ist:",
                       ErrorLine(AsSystemError(error))});
    return;
  }
  try {
    read(*file);
    LogLines(context.log, {kDone});
  } catch (const FormatError& error) {
    FailLoad(context, {error.Message()});
  } catch (const std::exception& error) {
    FailLoad(context, {"    Während des Einlesens dieser Datei ist folgender Fehler aufgetreten:",
                       ErrorLine(AsSystemError(error))});
  }
}

void RunSaveFrame(Context& context, const std::string& path, const std::function<void(ResultFile&)>& write,
                  const SaveWording& wording) {
  std::optional<ResultFile> file;
  try {
    file.emplace(context.files, &context.ui, path);
  } catch (const std::exception& error) {
    FailSave(context, wording.openFailed, error);
    return;
  }
  try {
    write(*file);
    file->Commit();
  } catch (const std::exception& error) {
    if (file->Cancelled()) context.userAbortRequested = true;
    file.reset();
    FailSave(context, WriteFailedSentence(path), error);
    return;
  }
  LogLines(context.log, {kDone});
}

}  // namespace quiverion
