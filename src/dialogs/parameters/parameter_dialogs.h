#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "macro/command_catalogue.h"

namespace quiverion {

/// An input box.
struct TextQuestion {
  std::string title;
  std::string prompt;
  std::string preset;
  std::function<void(const std::string&)> typed = {};  // called with the text after each change
};

/// A file dialog. Paths are the bytes that the system uses.
struct FileQuestion {
  enum class Kind {
    open,  // the file must exist
    save,  // it may exist; the dialog does not ask
  };
  Kind kind = Kind::open;
  std::string title = {};
  std::vector<std::string> filters = {};  // as shown: "Alle Dateien (*.*)", "Bilder (*.png;*.jpg)"
  std::size_t selectedFilter = 0;         // when opening
  std::string directory = {};
  std::string fileName = {};   // preset, without directory
  std::string extension = {};  // appended to a name without one ("txt"); empty: none
};

/// The dialogs that editing a macro needs besides message boxes: windows in the program, a script in tests. They do not
/// change the macro.
class ParameterDialogs {
 public:
  virtual ~ParameterDialogs() = default;

  /// Sets the topic of the following dialogs for the help: the name of a command or menu item, or empty.
  virtual void SetTopic(std::string_view topic) = 0;

  /// The command chosen in the command tree; none if the user cancels.
  virtual std::optional<std::int32_t> ChooseCommand() = 0;

  /// The answer to an input box; none if the user cancels.
  virtual std::optional<std::string> AskText(const TextQuestion& question) = 0;

  /// The chosen path; none if the user cancels or the dialog fails.
  virtual std::optional<std::string> ChooseFile(const FileQuestion& question) = 0;

  /// Shows the parameter window of a command with the values of `event`, which must be complete, and stores what the
  /// user confirms. False if the user cancels; the event is then unchanged. If `draft` is set, it is called after each
  /// change with what would be stored.
  virtual bool EditInWindow(const CommandRow& command, MacroEvent& event,
                            const std::function<void(const MacroEvent&)>& draft) = 0;
};

}  // namespace quiverion
