#include "dialogs/file_choices.h"

#include "platform/paths.h"

namespace quiverion {

std::string WithExtension(const std::string& path, const std::string& extension) {
  return DirectoryPrefixOf(path).append(BaseNameOf(FileNameOf(path))) + extension;
}

std::optional<std::string> ChooseFileWithExtension(ParameterDialogs& dialogs, FileSystem& files, UserInterface& ui,
                                                   const FileQuestion& question) {
  for (FileQuestion shown = question;;) {
    const auto chosen = dialogs.ChooseFile(shown);
    if (!chosen) return std::nullopt;
    std::string path = WithExtension(*chosen, "." + question.extension);
    if (question.kind == FileQuestion::Kind::open || !FileExists(files, path)) return path;
    const MessageAnswer answer = ui.Ask({.title = question.title,
                                         .text = "'" + path + "' existiert bereits.\r\nSoll die Datei ersetzt werden?",
                                         .buttons = MessageButtons::yesNo,
                                         .preselected = MessageAnswer::no});
    if (answer == MessageAnswer::yes) return path;
    shown.fileName = FileNameOf(path);
    shown.directory = DirectoryPrefixOf(path);
  }
}

}  // namespace quiverion
