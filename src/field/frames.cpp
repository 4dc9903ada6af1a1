#include "field/frames.h"

#include "platform/files/paths.h"

namespace quiverion {

void LogWarning(Context& context, std::initializer_list<std::string_view> lines) {
  LogLines(context.log, {kWarningMark});
  LogLines(context.log, lines);
  context.runHadError = true;
}

void WarnLostCharacters(Context& context, std::string_view text) {
  LogWarning(context, {"    Zeichen, die der Zeichensatz der Datei nicht kennt, werden als '?' gespeichert: '" +
                       std::string(text) + "'"});
}

void FailLoad(Context& context, std::initializer_list<std::string_view> lines) {
  LogLines(context.log, {kErrorMark});
  LogLines(context.log, lines);
  LogLines(context.log, {"    Die Bearbeitung der aktuellen Datei wird abgebrochen!"});
  context.abortCurrentFile = true;
}

void RunLoadFrame(Context& context, const std::string& path, const std::function<void(InputFile&)>& read) {
  std::unique_ptr<InputFile> file;
  const auto failure = Attempt([&] { file = context.files.OpenForReading(path); },
                               [&] {
                                 read(*file);
                                 LogLines(context.log, {kDoneText});
                               });
  if (!failure) return;
  if (failure->formatMessage) return FailLoad(context, {*failure->formatMessage});
  FailLoad(context, {failure->atOpening
                         ? "    Die aktuelle Datei kann nicht geöffnet werden, da folgender Fehler aufgetreten ist:"
                         : "    Während des Einlesens dieser Datei ist folgender Fehler aufgetreten:",
                     ErrorLine(failure->error)});
}

SaveOutcome FailSave(Context& context, const std::string& path, const SaveFailure& failure,
                     const SaveWording& wording) {
  context.runHadError = true;
  if (failure.cancelled) context.userAbortRequested = true;
  if (failure.formatMessage) {
    LogLines(context.log, {kErrorMark, *failure.formatMessage});
  } else if (!failure.cancelled || wording.logsCancel) {
    const std::string writeFailed =
        std::string(wording.writeFailed) + path +
        "' kann nicht gespeichert werden, da während des Schreibens folgender Fehler aufgetreten ist:";
    LogLines(context.log, {kErrorMark, failure.atOpening ? wording.openFailed : writeFailed, ErrorLine(failure.error)});
  }
  return failure.cancelled ? SaveOutcome::cancelled : SaveOutcome::failed;
}

SaveOutcome RunSaveFrame(Context& context, const std::string& path, const std::function<void(ResultFile&)>& write,
                         const SaveWording& wording, Opening opening) {
  const auto failure = SaveResult(context.files, &context.ui, path, write, opening);
  if (failure) return FailSave(context, path, *failure, wording);
  LogLines(context.log, {kDoneText});
  return SaveOutcome::saved;
}

void ShowFailureBox(Context& context, std::string_view title, std::string_view sentence, const Failure& failure) {
  context.ui.Ask({.title = std::string(title),
                  .text = failure.formatMessage ? *failure.formatMessage
                                                : std::string(sentence) + "\r\n\r\n" + ErrorText(failure.error)});
}

void RequireBelow(const std::string& name) {
  if (!LeadsUpwards(name)) return;
  throw SystemError::Saying(ErrorNumber::pathAccess,
                            "Der Dateiname '" + name + "' führt aus dem Verzeichnis der Originaldatei hinaus!");
}

}  // namespace quiverion
