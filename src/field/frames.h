#pragma once

#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "field/context.h"
#include "log/log_lines.h"
#include "messages/system_error.h"
#include "platform/files/result_file.h"

/// The frames of loading and saving own the sequence open / body / close / "fertig", every failure text and
/// the fate of an incomplete file. A reader or writer supplies only the body.
namespace quiverion {

/// A file that is not what it should be; the log receives each message on a line (or lines) of its own.
class FormatError : public std::exception {
 public:
  explicit FormatError(std::string message) : message_(std::move(message)) {}
  const std::string& Message() const { return message_; }
  const char* what() const noexcept override { return message_.c_str(); }

 private:
  std::string message_;
};

/// Logs the warning mark and the lines and sets runHadError.
void LogWarning(Context& context, std::initializer_list<std::string_view> lines);

/// Logs the error mark, the lines and that the current file is given up; sets `abortCurrentFile`.
void FailLoad(Context& context, std::initializer_list<std::string_view> lines);

/// Opens `path`, runs `read` and logs "fertig". Whatever fails is logged as stated for loading and sets
/// `abortCurrentFile`; nothing is thrown. The announcement has been logged by the caller.
void RunLoadFrame(Context& context, const std::string& path, const std::function<void(InputFile&)>& read);

/// Logs the error mark, `sentence` and the error and sets `runHadError`.
void FailSave(Context& context, std::string_view sentence, const std::exception& error);

/// Shows a message box: `sentence`, an empty line and the error.
void ShowErrorBox(Context& context, std::string_view title, std::string_view sentence, const std::exception& error);

/// Logs that characters of `text` which Windows-1252 lacks were written as "?", a warning.
void WarnLostCharacters(Context& context, std::string_view text);

/// Throws SystemError 75 where `name`, of a result that belongs beside its original file or below, leads out of that
/// directory: the name comes from a macro or a file that somebody else has made. A separator in front is no more than
/// one between the parts.
void RequireBelow(const std::string& name);

/// The sentence about a file that could not be written to its end.
std::string WriteFailedSentence(const std::string& path);

/// Wording of a save frame; the exports have a sentence of their own for a file that cannot be opened.
struct SaveWording {
  std::string_view openFailed =
      "    Die aktuelle Datei kann nicht gespeichert werden, da beim Öffnen folgender Fehler aufgetreten "
      "ist:";
};

/// Opens a result file for `path`, runs `write`, commits and logs "fertig". A failure is logged as stated for
/// saving and sets `runHadError`, never `abortCurrentFile`; the old file stays and no part of a new one is
/// left. A full disk asks Retry or Cancel; Cancel also sets `userAbortRequested`.
void RunSaveFrame(Context& context, const std::string& path, const std::function<void(ResultFile&)>& write,
                  const SaveWording& wording = {});

}  // namespace quiverion
