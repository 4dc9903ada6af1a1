#include "dialogs/macro_editing.h"

#include <gtest/gtest.h>

#include "dialogs/parameters/file_choices.h"
#include "dialogs/parameters/parameter_editing.h"
#include "support/scripted_dialogs.h"
#include "support/test_session.h"

namespace quiverion {
namespace {

using test::ScriptedDialogs;
using test::TestSession;

class MacroEditingTest : public testing::Test {
 protected:
  // Asks for the parameters of a new command, or of `event` as one of the macro.
  EditOutcome Ask(std::int32_t eventId) { return Ask(MacroEvent(eventId), true); }
  EditOutcome Ask(MacroEvent event, bool isNew) {
    EditingServices services{program.context, dialogs, "/mess"};
    command = std::move(event);
    return AskParameters(services, command, isNew);
  }
  // The message boxes since the last call, as "title|text".
  std::vector<std::string> TakeMessages() {
    std::vector<std::string> texts;
    for (const Message& box : program.ui.messages) texts.push_back(box.title + "|" + box.text);
    program.ui.messages.clear();
    return texts;
  }
  std::vector<std::int32_t> Macro() const {
    std::vector<std::int32_t> ids;
    for (const MacroEvent& event : program.session.macro) ids.push_back(event.EventId());
    return ids;
  }

  TestSession program;
  ScriptedDialogs dialogs;
  MacroEditing editing{program.session, dialogs};
  MacroEvent command;
};

using Ids = std::vector<std::int32_t>;
using Texts = std::vector<std::string>;

TEST_F(MacroEditingTest, InsertsBeforeTheSelectedCommandOrAtTheEnd) {
  dialogs.commands = {40001, 40101, 40102, 40103};
  EXPECT_EQ(editing.Insert(-1, "/"), 0);
  EXPECT_EQ(editing.Insert(-1, "/"), 1);
  EXPECT_EQ(editing.Insert(1, "/"), 1);
  EXPECT_EQ(editing.Insert(0, "/"), 0);
  EXPECT_EQ(Macro(), (Ids{40103, 40001, 40102, 40101}));
  EXPECT_EQ(editing.Insert(0, "/"), -1);  // the tree is cancelled
  dialogs.commands = {30001};
  EXPECT_EQ(editing.Insert(0, "/"), -1);  // its window is
  EXPECT_EQ(Macro().size(), 4u);
}

TEST_F(MacroEditingTest, MovesAndDeletesTheSelectedCommand) {
  program.session.macro = {MacroEvent(1), MacroEvent(2), MacroEvent(3)};
  EXPECT_EQ(editing.Move(0, -1), 0);
  EXPECT_EQ(editing.Move(2, 1), 2);
  EXPECT_EQ(editing.Move(-1, 1), -1);
  EXPECT_EQ(editing.Move(0, 1), 1);
  EXPECT_EQ(Macro(), (Ids{2, 1, 3}));
  EXPECT_FALSE(editing.Delete(-1));
  EXPECT_FALSE(editing.Delete(3));
  EXPECT_TRUE(editing.Delete(1));
  EXPECT_EQ(Macro(), (Ids{2, 3}));
}

TEST_F(MacroEditingTest, EditsACommandInItsPlace) {
  program.session.macro = {MacroEvent(40001), MacroEvent(50001), MacroEvent(12345)};
  program.session.macro[1].Set("Checked", true);
  program.ui.answers = {MessageAnswer::no, MessageAnswer::cancel};
  EXPECT_TRUE(editing.Edit(1, "/"));
  EXPECT_FALSE(program.session.macro[1].Flag("Checked"));
  EXPECT_FALSE(editing.Edit(1, "/"));
  EXPECT_FALSE(editing.Edit(-1, "/"));
  TakeMessages();
  for (const int without : {0, 2}) EXPECT_FALSE(editing.Edit(without, "/"));
  EXPECT_EQ(TakeMessages(), Texts(2,
                                  "QuiverionSeries  -  Parameter bearbeiten|Dieser Makro-Befehl hat keine "
                                  "Parameter, die bearbeitet werden könnten!"));
  EXPECT_EQ(Macro(), (Ids{40001, 50001, 12345}));
}

TEST_F(MacroEditingTest, EveryCommandAsksForEveryParameterItHas) {
  dialogs.edit = [](MacroEvent&) {};
  program.ui.defaultAnswer = MessageAnswer::yes;
  for (const CommandRow& row : CommandCatalogue()) {
    if (row.IsMenu()) continue;
    dialogs.texts = {"1"};
    dialogs.files = {row.eventId == 60001 ? "/new.col" : "/a.vas"};
    EXPECT_EQ(Ask(row.eventId), EditOutcome::stored) << row.constantName;
    for (const Parameter& parameter : row.parameters) EXPECT_TRUE(command.Find(parameter.key)) << parameter.key;
    EXPECT_EQ(command.Values().size(), 1 + row.parameters.size()) << row.constantName;
  }
}

TEST_F(MacroEditingTest, AWindowStartsFromWhatTheCommandHasOrThePreset) {
  MacroEvent stored(10101);
  stored.Set("Prefix", std::string("x"));
  Ask(stored, false);
  EXPECT_EQ(dialogs.edited.back().Text("Prefix") + dialogs.edited.back().Text("Postfix"), "x");
  Ask(10102);
  EXPECT_EQ(dialogs.edited.back().Text("Prefix"), "SW of ");
}

TEST_F(MacroEditingTest, ACommentOfBlanksIsNone) {
  dialogs.texts = {"", "  ", " ein Ä "};
  EXPECT_EQ(Ask(10002), EditOutcome::cancelled);
  EXPECT_EQ(Ask(10002), EditOutcome::cancelled);
  EXPECT_EQ(Ask(10002), EditOutcome::stored);
  EXPECT_EQ(command.Text("Comment"), " ein Ä ");
  EXPECT_EQ(dialogs.textQuestions.back().prompt,
            "Sie können nun eine Kommentarzeile eingeben, die dann dem Info-Text hinzugefügt wird.");
  Ask(command, false);
  EXPECT_EQ(dialogs.textQuestions.back().prompt, "Sie können die in den Info-Text einzufügende Kommentarzeile ändern.");
  EXPECT_EQ(dialogs.textQuestions.back().preset, " ein Ä ");
}

TEST_F(MacroEditingTest, AScaleFactorLiesFromATenthToTen) {
  const std::string large =
      "Wert zu klein|10.5? Ist das nicht etwas groß? Der von Ihnen angegebene Wert wird nicht "
      "benutzt! Geben Sie bitte einen Wert von höchstens 10 ein!";
  const auto small = [](const std::string& value) {
    return "Wert zu klein|" + value +
           "? Ist das nicht etwas klein? Der von Ihnen angegebene Wert wird nicht benutzt! Geben Sie bitte einen Wert "
           "von mindestens 0.1 ein!";
  };
  const struct {
    std::string answer;
    Texts messages;
  } cases[] = {{"0.1", {}},
               {"10", {}},
               {"1,5", {}},
               {"10.5", {large}},
               {"0.09", {small("0.09")}},
               {"abc", {small("0")}},
               {"1E999", {"Ungültige Eingabe|Die Zahl '1E999' ist zu groß!"}},
               {"", {}}};
  for (const auto& c : cases) {
    dialogs.texts = {c.answer};
    const bool stored = c.messages.empty() && !c.answer.empty();
    EXPECT_EQ(Ask(50006), stored ? EditOutcome::stored : EditOutcome::cancelled) << c.answer;
    EXPECT_EQ(TakeMessages(), c.messages);
  }
  dialogs.texts = {"-1E6"};
  EXPECT_EQ(Ask(50104), EditOutcome::stored);  // the palette has no limits
  EXPECT_EQ(command.Number("Value"), -1E6);
  Ask(command, false);
  EXPECT_EQ(dialogs.textQuestions.back().preset, "-1000000");
}

TEST_F(MacroEditingTest, ABufferFileIsAVectorField) {
  dialogs.files = {"/x/A.vAs", "/x/b.txt", "/x/vas"};
  EXPECT_EQ(Ask(20002), EditOutcome::stored);
  EXPECT_EQ(command.Text("FileName"), "/x/A.vAs");
  EXPECT_EQ(dialogs.fileQuestions.back().directory, "/mess");
  const MacroEvent stored = command;
  EXPECT_EQ(Ask(stored, false), EditOutcome::cancelled);
  EXPECT_EQ(dialogs.fileQuestions.back().directory, "/x/");
  EXPECT_EQ(dialogs.fileQuestions.back().fileName, "A.vAs");
  EXPECT_EQ(Ask(20002), EditOutcome::cancelled);
  EXPECT_EQ(TakeMessages(), Texts(2,
                                  "Ungültiges Dateiformat|Dieses Dateiformat ist ungültig! Sie können nur Dateien "
                                  "mit Endung .dat oder .vec öffnen."));
}

TEST_F(MacroEditingTest, VortexCentresNeedAFileOrTheTransformation) {
  using enum MessageAnswer;
  const struct {
    std::deque<MessageAnswer> answers;
    std::deque<std::string> files;
    bool autoTrafo;
    EditOutcome whenNew, whenEdited;
  } cases[] = {
      {{yes, no}, {"/w.txt"}, false, EditOutcome::stored, EditOutcome::stored},
      {{yes, yes}, {}, true, EditOutcome::stored, EditOutcome::stored},  // the file dialog is cancelled
      {{no, yes}, {}, true, EditOutcome::stored, EditOutcome::stored},
      {{no, no}, {}, false, EditOutcome::cancelled, EditOutcome::removeCommand},
  };
  MacroEvent old(40002);
  old.Set("FileName", std::string("/alt/alt.txt"));
  old.Set("AutoTrafo", false);
  for (const auto& c : cases) {
    for (const bool isNew : {true, false}) {
      program.ui.answers = c.answers;
      dialogs.files = c.files;
      ASSERT_EQ(Ask(isNew ? MacroEvent(40002) : old, isNew), isNew ? c.whenNew : c.whenEdited);
      if ((isNew ? c.whenNew : c.whenEdited) != EditOutcome::stored) continue;
      EXPECT_EQ(command.Text("FileName"), c.files.empty() ? "" : c.files.front());
      EXPECT_EQ(command.Flag("AutoTrafo"), c.autoTrafo);
    }
  }
  EXPECT_EQ(
      TakeMessages().back(),
      "QuiverionSeries - Wirbelzentren suchen|Da nun keine Option mehr gewählt ist, wird der Makrobefehl gelöscht.");
  program.session.macro = {MacroEvent(40001), old};
  program.ui.answers = {no, no};
  EXPECT_TRUE(editing.Edit(1, "/"));
  EXPECT_EQ(Macro(), Ids{40001});
}

TEST_F(MacroEditingTest, AnExistingCollectionIsAddedTo) {
  program.files.files["/x/alt.col"] = "";
  dialogs.files = {"/x/neu.COL"};
  EXPECT_EQ(Ask(60001), EditOutcome::stored);
  EXPECT_EQ(dialogs.fileQuestions.back().fileName, "Statistics");
  EXPECT_TRUE(TakeMessages().empty());
  dialogs.files = {"/x/neu.txt"};
  EXPECT_EQ(Ask(60001), EditOutcome::cancelled);
  EXPECT_EQ(TakeMessages(), Texts{"Ungültige Dateiendung|Diese Dateiendung ist ungültig! Sie können nur Dateien mit "
                                  "Endung .col wählen."});
  program.ui.answers = {MessageAnswer::cancel, MessageAnswer::ok};
  dialogs.files = {"/x/alt.col", "/x/alt.col"};
  EXPECT_EQ(Ask(60001), EditOutcome::cancelled);
  EXPECT_EQ(Ask(60001), EditOutcome::stored);
  EXPECT_EQ(TakeMessages(), Texts(2,
                                  "Datei existiert bereits|Es existiert bereits eine Datei unter diesem Namen. Diese "
                                  "Datei wird NICHT überschrieben! Stattdessen wird jedes ausgewählte Vektorfeld "
                                  "dieser Datei HINZUGEFÜGT!"));
  Ask(command, false);
  EXPECT_EQ(dialogs.fileQuestions.back().directory, "/x/");
  EXPECT_EQ(dialogs.fileQuestions.back().fileName, "alt");
}

TEST_F(MacroEditingTest, TheReadOnlyAttributeOfACollectionIsTakenOffWhereTheUserWantsIt) {
  program.files.files["/alt.col"] = "";
  program.files.readOnly = {"/alt.col"};
  const auto ask = [&](MessageAnswer answer) {
    program.ui.answers = {MessageAnswer::ok, answer};
    dialogs.files = {"/alt.col"};
    return Ask(60001);
  };
  EXPECT_EQ(ask(MessageAnswer::no), EditOutcome::cancelled);
  EXPECT_EQ(program.ui.messages.back().preselected, MessageAnswer::no);
  EXPECT_EQ(
      TakeMessages().back(),
      "QuiverionSeries - Vektorfelder aus Kollektion entfernen|ACHTUNG: Bei der von Ihnen ausgewählten Kollektion "
      "ist das Schreibschutz-Attribut gesetzt!\r\n\r\nSoll das Schreibschutz-Attribut entfernt werden?");
  program.files.faults.open = ErrorNumber::accessDenied;
  EXPECT_EQ(ask(MessageAnswer::yes), EditOutcome::cancelled);
  EXPECT_NE(TakeMessages().back().find("'/alt.col'!\r\nZugriff verweigert   (Fehler-Nr. 70)"), std::string::npos);
  program.files.faults.open.reset();
  EXPECT_EQ(ask(MessageAnswer::yes), EditOutcome::stored);
  EXPECT_TRUE(program.files.readOnly.empty());
}

TEST_F(MacroEditingTest, TheExtensionOfAFileIsForced) {
  const struct {
    const char *path, *forced;
  } cases[] = {{"/a/serie", "/a/serie.mak"},
               {"/a/serie.txt", "/a/serie.mak"},
               {"/a/a.b.c", "/a/a.b.mak"},
               {"/a.b/serie", "/a.b/serie.mak"},
               {"C:\\a.b\\serie", "C:\\a.b\\serie.mak"}};
  for (const auto& c : cases) EXPECT_EQ(WithExtension(c.path, ".mak"), c.forced);
  // No file is replaced unasked; No leads back to the dialog.
  program.files.files["/a.mak"] = "";
  const auto choose = [&](const char* path, FileQuestion::Kind kind) {
    dialogs.files = {path};
    return ChooseFileWithExtension(dialogs, program.files, program.ui, {.kind = kind, .extension = "mak"}).value_or("");
  };
  program.ui.answers = {MessageAnswer::no, MessageAnswer::yes};
  EXPECT_EQ(choose("/a.txt", FileQuestion::Kind::save), "");
  EXPECT_EQ(dialogs.fileQuestions.back().fileName, "a.mak");
  EXPECT_EQ(choose("/a.txt", FileQuestion::Kind::save), "/a.mak");
  EXPECT_EQ(TakeMessages(), Texts(2, "|'/a.mak' existiert bereits.\r\nSoll die Datei ersetzt werden?"));
  EXPECT_EQ(choose("/b.txt", FileQuestion::Kind::save), "/b.mak");
  EXPECT_EQ(choose("/a.txt", FileQuestion::Kind::open), "/a.mak");
  EXPECT_TRUE(TakeMessages().empty());
}

}  // namespace
}  // namespace quiverion
