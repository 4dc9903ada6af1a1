#include "dialogs/parameters/file_choices.h"

#include "messages/failure.h"
#include "platform/files/paths.h"

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

std::optional<std::string> ChooseCollection(ParameterDialogs& dialogs, FileSystem& files, UserInterface& ui,
                                            std::string_view title, const std::string& directory) {
  return ChooseFileWithExtension(dialogs, files, ui,
                                 {.title = std::string(title),
                                  .filters = {"Statistik-Kollektion (*.col)"},
                                  .directory = directory,
                                  .extension = "col"});
}

bool MakeCollectionWritable(FileSystem& files, UserInterface& ui, const std::string& path, const char* collection) {
  constexpr const char* title = "QuiverionSeries - Vektorfelder aus Kollektion entfernen";
  if (!files.IsReadOnly(path)) return true;
  const MessageAnswer answer = ui.Ask({.title = title,
                                       .text = std::string("ACHTUNG: Bei ") + collection +
                                               " ist das Schreibschutz-Attribut gesetzt!\r\n\r\n"
                                               "Soll das Schreibschutz-Attribut entfernt werden?",
                                       .buttons = MessageButtons::yesNo,
                                       .icon = MessageIcon::question,
                                       .preselected = MessageAnswer::no});
  if (answer != MessageAnswer::yes) return false;
  const auto failure = Attempt([&] { files.ClearReadOnly(path); });
  if (failure) {
    ui.Ask({.title = title,
            .text = "Das Schreibschutz-Attribut kann nicht entfernt werden bei '" + path + "'!\r\n" +
                    ErrorText(failure->error)});
  }
  return !failure;
}

}  // namespace quiverion
