#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quiverion {

enum class MessageButtons { ok, okCancel, retryCancel, abortRetryIgnore, yesNo, yesNoCancel };
enum class MessageIcon { information, warning, critical, question };
enum class MessageAnswer { ok, retry, cancel, abort, ignore, yes, no };

/// A message box. Texts are German UTF-8; lines of `text` are separated by "\r\n".
struct Message {
  std::string title;
  std::string text;
  MessageButtons buttons = MessageButtons::ok;
  MessageIcon icon = MessageIcon::warning;
  std::optional<MessageAnswer> preselected = {};  // the button that Enter presses; default: the first one
};

/// The progress of a run, for a progress window or line.
struct RunProgress {
  std::int32_t fileCount = 0;
  std::int32_t currentFile = 0;  // counted from 1
  std::int32_t filesDone = 0;
  std::string fileName;              // of the current file, without blanks around it
  std::string_view event;            // "Laden der Orginaldatei", then the long description of the running command
  bool errorOccurred = false;        // shown from the first command that runs after the error
  std::int32_t filesWithErrors = 0;  // of those that are done; warnings count
};

/// The only way for the core to ask, show progress and let window events be processed. Implementations: a terminal,
/// windows, and a script of answers for tests. Implementations do not set the flags of the run.
class UserInterface {
 public:
  virtual ~UserInterface() = default;

  /// Shows a message box and returns the answer. An answer that the box does not offer counts as its last button.
  virtual MessageAnswer Ask(const Message& box) = 0;

  /// A run begins; until RunEnded no other entry point of the core may be called from a yield.
  virtual void RunStarted(const RunProgress& progress) = 0;

  /// The progress has changed.
  virtual void ShowProgress(const RunProgress& progress) = 0;

  virtual void RunEnded() = 0;

  /// A computation outside a run begins: no other entry point of the core may be called until ComputationEnded.
  virtual void ComputationStarted() = 0;

  /// `done` of `total` (at least 1) steps of the computation are complete.
  virtual void ShowComputation(std::int64_t done, std::int64_t total) = 0;

  virtual void ComputationEnded() = 0;

  /// Processes pending events. Returns true if the user has requested and confirmed an abort; it may do so once or at
  /// every further call.
  virtual bool Yield() = 0;
};

}  // namespace quiverion
