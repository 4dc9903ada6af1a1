#pragma once

#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>

#include "field/context.h"
#include "log/log_lines.h"
#include "messages/failure.h"
#include "platform/files/result_file.h"

/// The frames for loading and saving are responsible for the sequence open, body, close, "fertig", for every failure
/// text and for an incomplete file. A reader or writer supplies only the body. The caller has logged the
/// announcement. The frames throw nothing.
namespace quiverion {

/// Logs the warning mark and the lines, and sets `runHadError`.
void LogWarning(Context& context, std::initializer_list<std::string_view> lines);

/// Warns that characters of `text` that are not in Windows-1252 were written as "?".
void WarnLostCharacters(Context& context, std::string_view text);

/// Logs the error mark, the lines and that the current file is given up; sets `abortCurrentFile`.
void FailLoad(Context& context, std::initializer_list<std::string_view> lines);

/// Opens `path`, runs `read` and logs "fertig". A failure is logged as FailLoad does.
void RunLoadFrame(Context& context, const std::string& path, const std::function<void(InputFile&)>& read);

/// Wording of a save frame.
struct SaveWording {
  std::string_view openFailed =
      "    Die aktuelle Datei kann nicht gespeichert werden, da beim Öffnen folgender Fehler aufgetreten ist:";
  std::string_view writeFailed = "    Die Datei '";  // the path and the rest of the sentence follow
  bool logsCancel = true;                            // an answer of Cancel is logged as the error it is about
};

enum class SaveOutcome { saved, failed, cancelled };

/// Logs why something was not saved: the error mark, a sentence and the error, or the message of a FormatError alone.
/// Sets `runHadError`, never `abortCurrentFile`; an answer of Cancel also sets `userAbortRequested`.
SaveOutcome FailSave(Context& context, const std::string& path, const SaveFailure& failure,
                     const SaveWording& wording = {});

/// Saves a result: `write` fills the file, then "fertig" is logged. Failures are logged as FailSave does; the old file
/// stays and no part of a new one is left. A write that meets a full disk or too many open files asks Retry or Cancel.
SaveOutcome RunSaveFrame(Context& context, const std::string& path, const std::function<void(ResultFile&)>& write,
                         const SaveWording& wording = {}, Opening opening = Opening::replace);

/// Shows a message box: `sentence`, an empty line and the error; the message of a FormatError alone.
void ShowFailureBox(Context& context, std::string_view title, std::string_view sentence, const Failure& failure);

/// Throws SystemError 75 if `name`, the name of a result relative to the directory of its original file, leads out of
/// that directory: it comes from a macro or a file that somebody else may have made. A leading separator has no effect
/// of its own.
void RequireBelow(const std::string& name);

}  // namespace quiverion
