#include "dialogs/file_choices.h"

#include "platform/paths.h"

namespace quiverion {

std::string WithExtension(const std::string& path, const std::string& extension) {
  const std::string_view name = FileNameOf(path);
  return path.substr(0, path.size() - name.size()) + std::string(BaseNameOf(name)) + extension;
}

std::optional<std::string> ChooseFileWithExtension(ParameterDialogs& dialogs, FileSystem& files, UserInterface& ui,
                                                   const FileQuestion& question) {
  const auto chosen = dialogs.ChooseFile(question);
  if (!chosen) return std::nullopt;
  const std::string path = WithExtension(*chosen, "." + question.extension);
  if (question.kind == FileQuestion::Kind::save && path != *chosen && FileExists(files, path)) {
    const MessageAnswer answer = ui.Ask({.title = question.title,
                                         .text = "'" + path + "' existiert bereits.\r\nSoll die Datei ersetzt werden?",
                                         .buttons = MessageButtons::yesNo,
                                         .icon = MessageIcon::warning,
                                         .preselected = MessageAnswer::no});
    if (answer != MessageAnswer::yes) return std::nullopt;
  }
  return path;
}

}  // namespace quiverion
