#include "dialogs/macro_editing.h"

#include <gtest/gtest.h>

#include "dialogs/parameters/file_choices.h"
#include "dialogs/parameters/parameter_editing.h"
#include "support/approved.h"
#include "support/scripted_dialogs.h"
#include "support/test_session.h"

namespace quiverion {
namespace {

using test::ScriptedDialogs;
using test::TestSession;

class MacroEditingTest : public testing::Test {
 protected:
  // Asks for the parameters of a new command, or of `event` as a command of the macro.
  EditOutcome Ask(std::int32_t eventId) { return Ask(MacroEvent(eventId), true); }
  EditOutcome Ask(MacroEvent event, bool isNew) {
    EditingServices services{program.context, dialogs, "/mess"};
    command = std::move(event);
    return AskParameters(services, command, isNew);
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
  using Lines = std::vector<int>;
  EXPECT_EQ(editing.Move({0}, -1), Lines{0});
  EXPECT_EQ(editing.Move({2}, 1), Lines{2});
  EXPECT_EQ(editing.Move({-1}, 1), Lines{-1});
  EXPECT_EQ(editing.Move({}, 1), Lines{});
  EXPECT_EQ(editing.Move({0}, 1), Lines{1});
  EXPECT_EQ(Macro(), (Ids{2, 1, 3}));
  EXPECT_EQ(editing.Move({1, 0}, 1), (Lines{1, 2}));
  EXPECT_EQ(Macro(), (Ids{3, 2, 1}));
  EXPECT_EQ(editing.Move({0, 2}, -1), (Lines{0, 2})) << "the first one cannot move";
  EXPECT_FALSE(editing.Delete({-1}));
  EXPECT_FALSE(editing.Delete({3}));
  EXPECT_TRUE(editing.Delete({1}));
  EXPECT_EQ(Macro(), (Ids{3, 1}));
  EXPECT_TRUE(editing.Delete({0, 1}));
  EXPECT_EQ(Macro(), Ids{});
}

TEST_F(MacroEditingTest, EditsACommandInItsPlace) {
  program.session.macro = {MacroEvent(40001), MacroEvent(50001), MacroEvent(12345)};
  program.session.macro[1].Set("Checked", true);
  program.ui.answers = {MessageAnswer::no, MessageAnswer::cancel};
  EXPECT_TRUE(editing.Edit(1, "/"));
  EXPECT_FALSE(program.session.macro[1].Flag("Checked"));
  EXPECT_FALSE(editing.Edit(1, "/"));
  EXPECT_FALSE(editing.Edit(-1, "/"));
  program.ui.messages.clear();
  for (const int without : {0, 2}) EXPECT_FALSE(editing.Edit(without, "/"));
  ASSERT_EQ(program.ui.messages.size(), 2u);
  EXPECT_EQ(program.ui.messages[1].text, "Dieser Makro-Befehl hat keine Parameter, die bearbeitet werden könnten!");
  EXPECT_EQ(Macro(), (Ids{40001, 50001, 12345}));
}

TEST_F(MacroEditingTest, EveryCommandAsksForEveryParameterItHas) {
  dialogs.edit = [](MacroEvent&) {};
  program.ui.defaultAnswer = MessageAnswer::yes;
  std::string told;
  for (const CommandRow& row : CommandCatalogue()) {
    if (row.IsMenu()) continue;
    dialogs.texts = {"1"};
    dialogs.files = {row.eventId == 60001 ? "/new.col" : "/a.vas"};
    EXPECT_EQ(Ask(row.eventId), EditOutcome::stored) << row.constantName;
    told += row.constantName;
    for (const Parameter& parameter : row.parameters) {
      told += " " + std::string(parameter.key) + "=" + command.Text(parameter.key);
    }
    told += "\n";
  }
  test::ExpectApproved("new_commands.txt", told);
}

// One after the other: what a command's dialogs ask, the answers, and what the command has then.
TEST_F(MacroEditingTest, DialoguesAboutParameters) {
  using enum MessageAnswer;
  const struct {
    std::int32_t eventId;  // 0: the command that the dialogue before has left is edited
    std::deque<std::string> texts, files;
    std::deque<MessageAnswer> answers;
  } dialogues[] = {
      {10002, {""}, {}, {}},  // a comment
      {10002, {"  "}, {}, {}},
      {10002, {" ein Ä "}, {}, {}},
      {0, {}, {}, {}},
      {50006, {"0.1"}, {}, {}},  // a scale factor
      {50006, {"1,5"}, {}, {}},
      {50006, {"10"}, {}, {}},
      {50006, {"10.5"}, {}, {}},
      {50006, {"0.09"}, {}, {}},
      {50006, {"abc"}, {}, {}},
      {50006, {"1E999"}, {}, {}},
      {50006, {}, {}, {}},
      {50104, {"-1E6"}, {}, {}},  // the palette has no limits
      {0, {}, {}, {}},
      {20002, {}, {"/x/b.txt"}, {}},  // a file for the buffer
      {20002, {}, {"/x/vas"}, {}},
      {20002, {}, {"/x/A.vAs"}, {}},
      {0, {}, {}, {}},
      {40002, {}, {"/w.txt"}, {yes, no}},  // vortex centres
      {0, {}, {"/v.txt"}, {yes, no}},
      {40002, {}, {}, {yes, yes}},  // the file dialog is cancelled
      {40002, {}, {}, {no, no}},
      {40002, {}, {}, {no, yes}},
      {0, {}, {}, {no, no}},
      {60001, {}, {"/x/neu.txt"}, {}},  // a collection
      {60001, {}, {"/x/neu.COL"}, {}},
      {60001, {}, {"/x/alt.col"}, {cancel}},
      {60001, {}, {"/x/alt.col"}, {ok}},
      {0, {}, {}, {}},
      {60001, {}, {"/fest.col"}, {ok, no}},
      {60001, {}, {"/fest.col"}, {ok, yes}},
      {60001, {}, {"/zu.col"}, {ok, yes}},
  };
  for (const char* name : {"/x/alt.col", "/fest.col", "/zu.col"}) program.files.files[name] = "";
  program.files.readOnly = {"/fest.col", "/zu.col"};
  program.files.openErrors["/zu.col"] = ErrorNumber::accessDenied;
  std::string told;
  for (const auto& d : dialogues) {
    dialogs.texts = d.texts, dialogs.files = d.files, program.ui.answers = d.answers;
    const EditOutcome outcome = d.eventId == 0 ? Ask(command, false) : Ask(d.eventId);
    told += "> " + std::to_string(command.EventId()) + "\n" + dialogs.TakeQuestions() + program.ui.TakeBoxes() + "= " +
            std::to_string(static_cast<int>(outcome));
    for (const Parameter& parameter : ParametersOf(command.EventId())) {
      if (outcome == EditOutcome::stored) told += " " + command.Text(parameter.key);
    }
    told += "\n\n";
  }
  test::ExpectApproved("dialogues.txt", told);
  EXPECT_EQ(program.files.readOnly, std::set<std::string>{"/zu.col"});
}

TEST_F(MacroEditingTest, AWindowStartsFromWhatTheCommandHasOrThePreset) {
  MacroEvent stored(10101);
  stored.Set("Prefix", std::string("x"));
  Ask(stored, false);
  EXPECT_EQ(dialogs.edited.back().Text("Prefix") + dialogs.edited.back().Text("Postfix"), "x");
  Ask(10102);
  EXPECT_EQ(dialogs.edited.back().Text("Prefix"), "SW of ");
}

TEST_F(MacroEditingTest, ACommandWithoutAnyOptionGoes) {
  program.session.macro = {MacroEvent(40001), MacroEvent(40002)};
  program.ui.answers = {MessageAnswer::no, MessageAnswer::no};
  EXPECT_TRUE(editing.Edit(1, "/"));
  EXPECT_EQ(Macro(), Ids{40001});
}

// Replacing a file requires a question; No leads back to the dialog.
TEST_F(MacroEditingTest, TheExtensionOfAFileIsForced) {
  std::string told;
  for (const char* path : {"/a/serie", "/a/serie.txt", "/a/a.b.c", "/a.b/serie", "C:\\a.b\\serie"}) {
    told += WithExtension(path, ".mak") + "\n";
  }
  program.files.files["/a.mak"] = "";
  program.ui.answers = {MessageAnswer::no, MessageAnswer::yes};
  using Kind = FileQuestion::Kind;
  for (const auto& [path, kind] :
       {std::pair("/a.txt", Kind::save), {"/a.txt", Kind::save}, {"/b.txt", Kind::save}, {"/a.txt", Kind::open}}) {
    dialogs.files = {path};
    const FileQuestion question = {.kind = kind, .extension = "mak"};
    told += ChooseFileWithExtension(dialogs, program.files, program.ui, question).value_or("none") + "\n" +
            dialogs.TakeQuestions() + program.ui.TakeBoxes();
  }
  test::ExpectApproved("extensions.txt", told);
}

}  // namespace
}  // namespace quiverion
