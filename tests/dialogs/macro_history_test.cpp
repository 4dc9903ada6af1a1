// Undo and redo: after each step, the macro file is the one of that moment.
#include "dialogs/macro_history.h"

#include <gtest/gtest.h>

#include <random>

#include "dialogs/macro_editing.h"
#include "macro/macro_file.h"
#include "support/commands.h"
#include "support/scripted_dialogs.h"
#include "support/test_session.h"

namespace quiverion {
namespace {

using test::Command;

class MacroHistoryTest : public testing::Test {
 protected:
  std::string MacroFile() {
    EXPECT_TRUE(SaveMacroFile(program.session, "/jetzt.mak"));
    program.ui.messages.clear();
    return program.files.files["/jetzt.mak"];
  }

  // One letter of a sequence: an edit of the macro, undo or redo.
  void Do(char letter, int place) {
    MacroEventList& macro = program.session.macro;
    const int count = static_cast<int>(macro.size());
    const int line = count == 0 ? -1 : place % count;
    switch (letter) {
      case 'i':
        dialogs.commands = {place % 2 == 0 ? 40001 : 40103};
        return history.Edit("einfügen", [&] { editing.Insert(line, "/"); });
      case 'e':
        return history.Edit("bearbeiten", [&] {
          if (line >= 0) macro[static_cast<std::size_t>(line)] = Command("evtInsertComment", {{"Comment", place}});
        });
      case 'd':
        return history.Edit("löschen", [&] { editing.Delete({line, place % 3}); });
      case 'm':
        return history.Edit("verschieben", [&] { editing.Move({line, line + 1}, place % 2 == 0 ? 1 : -1); });
      case 'l':
        return history.Edit("öffnen", [&] { macro.assign(static_cast<std::size_t>(place % 4), Command("evtMirror")); });
      case 'g':
        return history.Move("Grenze", [&] {
          if (line >= 0) macro[0].Set("Value", static_cast<double>(place));
        });
      case 'E':
        return history.EndMovement();
      case 'u':
        return history.Undo();
      default:
        return history.Redo();
    }
  }

  test::TestSession program;
  test::ScriptedDialogs dialogs;
  MacroEditing editing{program.session, dialogs};
  MacroHistory history{program.session};
};

// Every state, with the one that is shown: what undo and redo are to give.
struct States {
  std::vector<std::string> files;
  std::size_t now = 0;
};

TEST_F(MacroHistoryTest, EverySequenceGoesBackAndForthThroughTheSameFiles) {
  std::mt19937 random(7);
  const auto any = [&random](int count) { return std::uniform_int_distribution<int>(0, count - 1)(random); };
  for (std::string sequence :
       {"iiiuuurrr", "iiiieuudiur", "lmmmuurruuuu", "iiidduuuur", "leluuulrru", "", "", "", ""}) {
    if (sequence.empty()) {
      for (int k = 0; k < 120; ++k) sequence += "iiedmmlur"[any(9)];
    }
    SCOPED_TRACE(sequence);
    program.session.macro.clear();
    history.Forget();
    States states{{MacroFile()}};
    for (const char letter : sequence) {
      Do(letter, any(12));
      const std::string file = MacroFile();
      if (letter == 'u') {
        if (states.now > 0) --states.now;
      } else if (letter == 'r') {
        if (states.now + 1 < states.files.size()) ++states.now;
      } else if (file != states.files[states.now]) {
        states.files.resize(++states.now);
        states.files.push_back(file);
        if (states.now > MacroHistory::kSteps) {
          states.files.erase(states.files.begin());
          --states.now;
        }
      }
      ASSERT_EQ(file, states.files[states.now]) << "after '" << letter << "'";
    }
  }
}

TEST_F(MacroHistoryTest, AHundredStepsAreKept) {
  for (int k = 0; k < 130; ++k) Do('i', k);
  for (int k = 0; k < 130; ++k) history.Undo();
  EXPECT_EQ(program.session.macro.size(), 30u);
  for (int k = 0; k < 130; ++k) history.Redo();
  EXPECT_EQ(program.session.macro.size(), 130u);
}

TEST_F(MacroHistoryTest, AMovementIsOneStep) {
  program.session.macro = {Command("evtPaletteMin", {{"Value", 0.0}})};
  const auto value = [&] { return program.session.macro[0].Number("Value"); };
  for (const char letter : std::string("gggE")) Do(letter, letter == 'g' ? 3 + history.Stack().count() : 0);
  Do('g', 8);
  Do('g', 9);
  history.Undo();
  EXPECT_EQ(value(), 4.0);
  history.Undo();
  EXPECT_EQ(value(), 0.0);
  history.Redo();
  history.Redo();
  EXPECT_EQ(value(), 9.0);
  Do('E', 0);
  for (const int place : {5, 9}) Do('g', place);  // back to the beginning: no step
  history.Undo();
  EXPECT_EQ(value(), 4.0);
}

TEST_F(MacroHistoryTest, WhatAnEditThatThrowsHasChangedCanBeUndone) {
  int restored = 0;
  QObject::connect(&history, &MacroHistory::MacroRestored, [&](int line) { restored = 10 + line; });
  const auto fail = [&] {
    program.session.macro.emplace_back(40001);
    throw std::bad_alloc();
  };
  EXPECT_THROW(history.Edit("einfügen", fail), std::bad_alloc);
  history.Undo();
  EXPECT_TRUE(program.session.macro.empty());
  EXPECT_EQ(restored, 10);
}

}  // namespace
}  // namespace quiverion
