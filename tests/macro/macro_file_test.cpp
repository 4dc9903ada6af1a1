#include "macro/macro_file.h"

#include <gtest/gtest.h>

#include "macro/command_catalogue.h"
#include "run_fixture.h"
#include "support/approved.h"
#include "support/bytes.h"

namespace quiverion::test {
namespace {

std::string Hexadecimal(const std::string& bytes) {
  std::string text;
  for (const char byte : bytes) {
    constexpr char digits[] = "0123456789ABCDEF";
    const auto value = static_cast<unsigned char>(byte);
    text += {digits[value / 16], digits[value % 16], text.size() % 96 == 93 ? '\n' : ' '};
  }
  return text;
}

class MacroFile : public testing::Test {
 protected:
  std::string Save(const MacroEventList& macro) {
    program.session.macro = macro;
    EXPECT_TRUE(SaveMacroFile(program.session, "/m.mak"));
    program.ui.messages.clear();  // what is rounded
    return program.files.files["/m.mak"];
  }
  MacroEventList Load(const std::string& bytes) {
    program.files.files["/m.mak"] = bytes;
    EXPECT_TRUE(LoadMacroFile(program.session, "/m.mak"));
    return program.session.macro;
  }
  // Loading these bytes fails and leaves the macro as it was.
  void ExpectRefused(const std::string& bytes) {
    program.files.files["/bad.mak"] = bytes;
    program.session.macro = {Event(40103)};
    EXPECT_FALSE(LoadMacroFile(program.session, "/bad.mak"));
    EXPECT_EQ(program.ui.TakeBoxes(), "! 0 1 -1 QuiverionSeries|Fehler beim Öffnen der Datei!\n");
    ASSERT_EQ(program.session.macro.size(), 1u);
    EXPECT_EQ(program.session.macro[0].EventId(), 40103);
  }

  TestSession program;
};

// Every command with values of all kinds, converted where the file wants another.
MacroEventList EveryCommand() {
  MacroEventList macro;
  int number = 0;
  for (const CommandRow& row : CommandCatalogue()) {
    if (row.IsMenu()) continue;
    MacroEvent& event = macro.emplace_back(row.eventId);
    for (const Parameter& parameter : row.parameters) {
      ++number;
      switch (parameter.kind) {
        case ParameterKind::text:
          event.Set(parameter.key, "Maß\\€ " + std::to_string(number));
          break;
        case ParameterKind::flag:
          event.Set(parameter.key, number % 2);
          break;
        default:
          event.Set(parameter.key, number + 0.5);
      }
    }
  }
  macro.emplace_back(12345);  // unknown, and a menu
  macro.emplace_back(50100);
  return macro;
}

TEST_F(MacroFile, WritesEveryKindOfParameterByteForByte) {
  // Numbers go into the file as they are kept there: halves are rounded to even.
  EXPECT_EQ(Save({Event(40201, {{"XComp", 2.5}, {"YComp", -1.5}}), Event(50006, {{"Value", 0.1}}),
                  Event(50003, {{"Checked", 1}}), Event(30002, {{"ChkPosX", 2.0}, {"ChkPosY", 0}}),
                  Event(40002, {{"FileName", std::string("C:\\Maße\\w.txt")}, {"AutoTrafo", false}}), Event(-1)}),
            Bytes()
                .I32(6)
                .I32(40201)
                .I32(2)
                .I32(-2)
                .I32(50006)
                .F64(0.1)
                .I32(50003)
                .I16(-1)
                .I32(30002)
                .I32(2)
                .I32(0)
                .I32(40002)
                .Text("C:\\Ma\xDF"
                      "e\\w.txt")
                .I16(0)
                .I32(-1)
                .Get());
  ExpectApproved("macro_file.txt", Hexadecimal(Save(EveryCommand())));
}

TEST_F(MacroFile, ReadsWhatItWritesAndRefusesItCutAnywhere) {
  const std::string bytes = Save(EveryCommand());
  EXPECT_EQ(Save(Load(bytes)), bytes);
  EXPECT_EQ(Load(Bytes().I32(0)).size(), 0u);
  for (std::size_t size = 0; size < bytes.size(); ++size) {
    ExpectRefused(bytes.substr(0, size));
    ASSERT_FALSE(HasFailure()) << size << " bytes";
  }
}

TEST_F(MacroFile, RefusesDamagedCountsAndLengths) {
  const std::string bad[] = {Bytes().I32(-1), Bytes().I32(2147483647).I32(40103),
                             Bytes().I32(1).I32(10002).I32(-1).I32(0), Bytes().I32(1).I32(10001).I32(2147483647).I32(0),
                             Bytes().I32(1).I32(10001).Text("a").I32(-5).I32(0)};
  for (const std::string& bytes : bad) ExpectRefused(bytes);
  program.files.readFailsAt["/bad.mak"] = 40;
  ExpectRefused(Save(EveryCommand()));
}

TEST_F(MacroFile, LeavesTheOldFileWhereAMacroCannotBeSaved) {
  const MacroEventList failures[] = {{Event(40103), Event(10002)},                    // a missing parameter
                                     {Event(40201, {{"XComp", 3e9}, {"YComp", 0}})},  // a number that does not fit
                                     {Event(20002, {{"FileName", std::string("Ω.vas")}})}};  // not in Windows-1252
  for (const MacroEventList& macro : failures) {
    program.files.files = {{"/m.mak", "old"}};
    program.session.macro = macro;
    EXPECT_FALSE(SaveMacroFile(program.session, "/m.mak"));
    EXPECT_EQ(program.files.files, (std::map<std::string, std::string>{{"/m.mak", "old"}}));
    EXPECT_EQ(program.files.openWrittenFiles, 0);
    EXPECT_EQ(program.session.macro.size(), macro.size());
  }
  program.session.context.decimalSeparator = ',';
  program.session.macro = {Event(40103), Event(40201, {{"XComp", 2.5}, {"YComp", -1}}),
                           Event(40202, {{"XComp", 4}, {"YComp", -1.5}})};
  EXPECT_TRUE(SaveMacroFile(program.session, "/m.mak")) << "what is rounded is said";
  EXPECT_EQ(program.session.macro[1].Number("XComp"), 2.5);
  ExpectApproved("unsaved_macros.txt", program.ui.TakeBoxes());
}

}  // namespace
}  // namespace quiverion::test
