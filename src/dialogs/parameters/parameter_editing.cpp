#include "dialogs/parameters/parameter_editing.h"

#include <utility>

#include "dialogs/parameters/file_choices.h"
#include "macro/series_files.h"
#include "messages/failure.h"
#include "platform/files/paths.h"
#include "platform/text/numbers.h"
#include "platform/text/text.h"

namespace quiverion {
namespace {

// Asks for the parameters of one command; the members are what all steps need.
struct Editing {
  EditingServices& services;
  const CommandRow& command;
  MacroEvent& event;
  bool isNew;

  MessageAnswer Ask(const Message& box) const { return services.context.ui.Ask(box); }
  void Inform(std::string title, std::string text, MessageIcon icon) const {
    Ask({.title = std::move(title), .text = std::move(text), .icon = icon});
  }
};

EditOutcome AskComment(const Editing& editing) {
  TextQuestion question;
  question.title = "QuiverionSeries  -  Kommentar einfügen";
  if (editing.isNew) {
    question.prompt = "Sie können nun eine Kommentarzeile eingeben, die dann dem Info-Text hinzugefügt wird.";
  } else {
    question.prompt = "Sie können die in den Info-Text einzufügende Kommentarzeile ändern.";
    question.preset = editing.event.Text("Comment");
  }
  const auto answer = editing.services.dialogs.AskText(question);
  if (!answer || TrimBlanks(*answer).empty()) return EditOutcome::cancelled;
  editing.event.Set("Comment", *answer);
  return EditOutcome::stored;
}

// Directory and name of the file that the command already has.
void PresetWith(FileQuestion& question, const std::string& path) {
  if (path.empty()) return;
  question.fileName = FileNameOf(path);
  question.directory = DirectoryPrefixOf(path);
}

EditOutcome AskBufferFile(const Editing& editing) {
  FileQuestion question{.title = "Vektorfeld aus Datei in Buffer einladen",
                        .filters = {"Alle Dateien (*.*)", "Vektorfelder (*.vas;*.vec;*.dat)"},
                        .selectedFilter = 1,
                        .directory = editing.services.directory};
  if (!editing.isNew) PresetWith(question, editing.event.Path("FileName"));
  const auto path = editing.services.dialogs.ChooseFile(question);
  if (!path) return EditOutcome::cancelled;
  if (!IsSeriesFile(*path)) {
    editing.Inform("Ungültiges Dateiformat",
                   "Dieses Dateiformat ist ungültig! Sie können nur Dateien mit Endung .dat oder .vec öffnen.",
                   MessageIcon::warning);
    return EditOutcome::cancelled;
  }
  editing.event.Set("FileName", *path);
  return EditOutcome::stored;
}

EditOutcome AskVortexCentres(const Editing& editing) {
  const std::string title = "QuiverionSeries - Wirbelzentren suchen";
  const auto confirmed = [&](std::string text) {
    return editing.Ask({.title = title,
                        .text = std::move(text),
                        .buttons = MessageButtons::yesNo,
                        .icon = MessageIcon::question}) == MessageAnswer::yes;
  };
  std::string textFile;
  if (confirmed("Diese Funktion sucht nach Maxima der (Swirling Strength)². Wollen Sie die gefundenen Maxima einer "
                "Textdatei hinzufügen?")) {
    FileQuestion question{.kind = FileQuestion::Kind::save,
                          .title = "Wirbelzentren einer Textdatei hinzufügen",
                          .filters = {"Textdatei (*.txt)"},
                          .directory = editing.services.directory,
                          .extension = "txt"};
    if (!editing.isNew) PresetWith(question, editing.event.Path("FileName"));
    textFile = editing.services.dialogs.ChooseFile(question).value_or("");
  }
  const bool autoTrafo = confirmed(
      "Die Vektorfelder können sofort Galilei-transformiert werden. Sie werden dann in einem Unterverzeichnis "
      "abgespeichert, das den gleichen Namen trägt wie die Originaldatei. Die transformierten Vektorfelder werden dann "
      "als 'Swirl1.vas', 'Swirl2.vas', ... durchnumeriert. Wollen Sie diese Transformation automatisch durchführen "
      "lassen?");
  if (textFile.empty() && !autoTrafo) {
    if (editing.isNew) return EditOutcome::cancelled;
    editing.Inform(title, "Da nun keine Option mehr gewählt ist, wird der Makrobefehl gelöscht.",
                   MessageIcon::information);
    return EditOutcome::removeCommand;
  }
  editing.event.Set("FileName", textFile);
  editing.event.Set("AutoTrafo", autoTrafo);
  return EditOutcome::stored;
}

EditOutcome AskYesOrNo(const Editing& editing) {
  const MessageAnswer answer = editing.Ask({.title = std::string(editing.command.editor.title),
                                            .text = std::string(editing.command.editor.text),
                                            .buttons = MessageButtons::yesNoCancel,
                                            .icon = MessageIcon::question,
                                            .preselected = MessageAnswer::no});
  if (answer != MessageAnswer::yes && answer != MessageAnswer::no) return EditOutcome::cancelled;
  editing.event.Set("Checked", answer == MessageAnswer::yes);
  return EditOutcome::stored;
}

// Shows a number while it is being typed, if it could be stored.
void DraftNumber(const Editing& editing, const std::string& text) {
  const Parameter& parameter = editing.command.parameters.front();
  double value = 0.0;
  if (text.empty() || Attempt([&] { value = ReadParameterNumber(text); })) return;
  if (value < parameter.low || value > parameter.high) return;
  MacroEvent draft = editing.event;
  draft.Set("Value", value);
  editing.services.draft(draft);
}

// A number out of bounds is refused with a message. True if it was.
bool RefuseOutOfBounds(const Editing& editing, double value) {
  const Parameter& parameter = editing.command.parameters.front();
  const bool large = value > parameter.high;
  if (!large && value >= parameter.low) return false;
  editing.Inform(
      "Wert zu klein",
      FormatNumber(value) + "? Ist das nicht etwas " + (large ? "groß" : "klein") +
          "? Der von Ihnen angegebene Wert wird nicht benutzt! Geben Sie bitte einen Wert von " +
          (large ? "höchstens " + FormatNumber(parameter.high) : "mindestens " + FormatNumber(parameter.low)) + " ein!",
      MessageIcon::information);
  return true;
}

EditOutcome AskNumber(const Editing& editing) {
  const ParameterEditor& editor = editing.command.editor;
  TextQuestion question{std::string(editor.title), std::string(editor.text),
                        editing.isNew ? std::string(editing.command.parameters.front().preset)
                                      : FormatNumber(editing.event.Number("Value"))};
  if (editing.services.draft) {
    question.typed = [&editing](const std::string& text) { DraftNumber(editing, text); };
    DraftNumber(editing, question.preset);
  }
  const auto answer = editing.services.dialogs.AskText(question);
  if (!answer || answer->empty()) return EditOutcome::cancelled;
  double value = 0.0;
  if (Attempt([&] { value = ReadParameterNumber(*answer); })) {
    RefuseHugeNumber(editing.services.context.ui, *answer);
    return EditOutcome::cancelled;
  }
  if (RefuseOutOfBounds(editing, value)) return EditOutcome::cancelled;
  editing.event.Set("Value", value);
  return EditOutcome::stored;
}

EditOutcome AskCollectionFile(const Editing& editing) {
  FileQuestion question{.kind = FileQuestion::Kind::save,
                        .title = "Vektorfeld für Statistik sammeln",
                        .filters = {"Statistik-Kollektion (*.col)"},
                        .directory = editing.services.directory,
                        .fileName = "Statistics",
                        .extension = "col"};
  if (!editing.isNew) PresetWith(question, editing.event.Path("FileName"));
  question.fileName = BaseNameOf(question.fileName);
  const auto path = editing.services.dialogs.ChooseFile(question);
  if (!path) return EditOutcome::cancelled;
  if (!AsciiUpper(*path).ends_with(".COL")) {
    editing.Inform("Ungültige Dateiendung",
                   "Diese Dateiendung ist ungültig! Sie können nur Dateien mit Endung .col wählen.",
                   MessageIcon::warning);
    return EditOutcome::cancelled;
  }
  if (FileExists(editing.services.context.files, *path)) {
    const MessageAnswer answer = editing.Ask(
        {.title = "Datei existiert bereits",
         .text = "Es existiert bereits eine Datei unter diesem Namen. Diese Datei wird NICHT überschrieben! "
                 "Stattdessen wird jedes ausgewählte Vektorfeld dieser Datei HINZUGEFÜGT!",
         .buttons = MessageButtons::okCancel,
         .icon = MessageIcon::information});
    if (answer != MessageAnswer::ok ||
        !MakeCollectionWritable(editing.services.context.files, editing.services.context.ui, *path,
                                "der von Ihnen ausgewählten Kollektion")) {
      return EditOutcome::cancelled;
    }
  }
  editing.event.Set("FileName", *path);
  return EditOutcome::stored;
}

}  // namespace

void AddDefaultParameters(MacroEvent& event) {
  for (const Parameter& parameter : ParametersOf(event.EventId())) {
    if (event.Find(parameter.key) == nullptr) event.Set(parameter.key, PresetOf(parameter));
  }
}

void RefuseHugeNumber(UserInterface& ui, std::string_view text) {
  constexpr std::size_t shownLength = 30;
  const std::string shown(text.size() <= shownLength ? text : std::string(text.substr(0, shownLength)) + "...");
  ui.Ask({.title = "Ungültige Eingabe", .text = "Die Zahl '" + shown + "' ist zu groß!", .icon = MessageIcon::warning});
}

EditOutcome AskParameters(EditingServices& services, MacroEvent& event, bool isNew) {
  const CommandRow* const command = FindCommand(event.EventId());
  if (command == nullptr) return EditOutcome::stored;
  services.dialogs.SetTopic(command->constantName);
  const Editing editing{services, *command, event, isNew};
  switch (command->editor.kind) {
    case EditorKind::none:
      return EditOutcome::stored;
    case EditorKind::comment:
      return AskComment(editing);
    case EditorKind::bufferFile:
      return AskBufferFile(editing);
    case EditorKind::vortexCentres:
      return AskVortexCentres(editing);
    case EditorKind::question:
      return AskYesOrNo(editing);
    case EditorKind::number:
      return AskNumber(editing);
    case EditorKind::collectionFile:
      return AskCollectionFile(editing);
    case EditorKind::names:
    case EditorKind::faultVectors:
    case EditorKind::mirror:
    case EditorKind::coordinates:
    case EditorKind::constVector:
      break;
  }
  AddDefaultParameters(event);
  return services.dialogs.EditInWindow(*command, event, services.draft) ? EditOutcome::stored : EditOutcome::cancelled;
}

}  // namespace quiverion
