#include "macro/macro_file.h"

#include <gtest/gtest.h>

#include "run_fixture.h"
#include "support/bytes.h"

namespace quiverion::test {
namespace {

class MacroFile : public testing::Test {
 protected:
  std::string Save(const MacroEventList& macro) {
    program.session.macro = macro;
    EXPECT_TRUE(SaveMacroFile(program.session, "/m.mak"));
    return program.files.files["/m.mak"];
  }
  MacroEventList Load(const std::string& bytes) {
    program.files.files["/m.mak"] = bytes;
    EXPECT_TRUE(LoadMacroFile(program.session, "/m.mak"));
    return program.session.macro;
  }
  void ExpectMessage(const std::string& text) {
    ASSERT_EQ(program.ui.messages.size(), 1u);
    const Message& box = program.ui.messages.front();
    EXPECT_EQ(box.title, "QuiverionSeries");
    EXPECT_EQ(box.text, text);
    EXPECT_EQ(box.icon, MessageIcon::warning);
    EXPECT_EQ(box.buttons, MessageButtons::ok);
    program.ui.messages.clear();
  }
  // Loading these bytes fails and leaves the macro as it was.
  void ExpectRefused(const std::string& bytes) {
    program.files.files["/bad.mak"] = bytes;
    program.session.macro = {Event(40103)};
    EXPECT_FALSE(LoadMacroFile(program.session, "/bad.mak"));
    ExpectMessage("Fehler beim Öffnen der Datei!");
    ASSERT_EQ(program.session.macro.size(), 1u);
    EXPECT_EQ(program.session.macro[0].EventId(), 40103);
  }

  TestSession program;
};

struct FileCase {
  const char* name;
  MacroEventList macro;
  std::string bytes;
};

MacroEvent FaultVectors() {
  return Event(30001, {{"ChkAbsDeviation", 1},
                       {"TxtAbsDeviation", std::string("30")},
                       {"ChkAbsInterval", 2},
                       {"OptAbsIntOut", true},
                       {"TxtAbsIntMin", std::string("0.5")},
                       {"TxtAbsIntMax", std::string("1e2")},
                       {"ChkDirDeviation", 0},
                       {"TxtDirDeviation", std::string("45°")},
                       {"ChkXComp", 1.0},
                       {"OptXCompIntOut", false},
                       {"TxtXCompIntMin", std::string("-7")},
                       {"TxtXCompIntMax", std::string()},
                       {"ChkYComp", 0},
                       {"OptYCompIntOut", true},
                       {"TxtYCompIntMin", std::string("a")},
                       {"TxtYCompIntMax", std::string("b")},
                       {"CompareVectorType", 3},
                       {"CboMedianX", 1},
                       {"CboMedianY", 2.0},
                       {"CboLocalMiddleX", 3},
                       {"CboLocalMiddleY", 4},
                       {"TxtUserVectorX", std::string("1.5")},
                       {"TxtUserVectorY", std::string("-2")},
                       {"LogicalOr", true}});
}

// clang-format off
const std::vector<FileCase>& Examples() {
  static const std::vector<FileCase> cases = {
      {"empty", {}, Bytes().I32(0)},
      {"faulty vectors",
       {FaultVectors()},
       Bytes().I32(1).I32(30001)
           .I32(1).Text("30").I32(2).I16(-1).Text("0.5").Text("1e2")
           .I32(0).Text("45\xB0")
           .I32(1).I16(0).Text("-7").Text("")
           .I32(0).I16(-1).Text("a").Text("b")
           .I32(3).I32(1).I32(2).I32(3).I32(4).Text("1.5").Text("-2").I16(-1)},
      {"constant vectors",
       {Event(40201, {{"XComp", 2.5}, {"YComp", -1.5}}), Event(40202, {{"XComp", 3.5}, {"YComp", -0.4}})},
       Bytes().I32(2).I32(40201).I32(2).I32(-2).I32(40202).I32(4).I32(0)},
      {"mirror, vortex centres, view",
       {Event(30002, {{"ChkPosX", 1}, {"ChkPosY", 0}}),
        Event(40002, {{"FileName", std::string("C:\\Maße\\w.txt")}, {"AutoTrafo", false}}),
        Event(50003, {{"Checked", 1}}), Event(50006, {{"Value", 0.1}}), Event(50105, {{"Value", -3}})},
       Bytes().I32(5).I32(30002).I32(1).I32(0).I32(40002).Text("C:\\Ma\xDF" "e\\w.txt").I16(0).I32(50003).I16(-1)
           .I32(50006).F64(0.1).I32(50105).F64(-3)},
      {"transformation, buffer, statistics, without parameters",
       {Event(30003, {{"TxtFakX", std::string("1")}, {"TxtDeltaX", std::string("2")}, {"TxtFakY", std::string("3")},
                      {"TxtDeltaY", std::string("4")}, {"TxtFakVecX", std::string("5")},
                      {"TxtFakVecY", std::string("6")}}),
        Event(20002, {{"FileName", std::string("b.vec")}}), Event(40103),
        Event(60001, {{"FileName", std::string("€.col")}})},
       Bytes().I32(4).I32(30003).Text("1").Text("2").Text("3").Text("4").Text("5").Text("6")
           .I32(20002).Text("b.vec").I32(40103).I32(60001).Text("\x80.col")},
      {"unknown and menu ids", {Event(12345), Event(50100), Event(-1)},
       Bytes().I32(3).I32(12345).I32(50100).I32(-1)}};
  return cases;
}
// clang-format on

TEST_F(MacroFile, WritesAndReadsEveryKindOfParameterByteForByte) {
  for (const FileCase& c : Examples()) {
    EXPECT_EQ(Save(c.macro), c.bytes) << c.name;
    const MacroEventList macro = Load(c.bytes);
    ASSERT_EQ(macro.size(), c.macro.size()) << c.name;
    for (std::size_t k = 0; k < macro.size(); ++k) {
      EXPECT_EQ(macro[k].Values().size(), c.macro[k].Values().size()) << c.name;
    }
    EXPECT_EQ(Save(macro), c.bytes) << c.name;
  }
}

TEST_F(MacroFile, RefusesAFileThatIsCutAnywhere) {
  for (const FileCase& c : Examples()) {
    for (std::size_t size = 0; size < c.bytes.size(); ++size) {
      ExpectRefused(c.bytes.substr(0, size));
      ASSERT_FALSE(HasFailure()) << c.name << " cut to " << size << " bytes";
    }
  }
}

TEST_F(MacroFile, RefusesDamagedCountsAndLengths) {
  const std::string bad[] = {Bytes().I32(-1), Bytes().I32(2147483647).I32(40103),
                             Bytes().I32(1).I32(10002).I32(-1).I32(0), Bytes().I32(1).I32(10001).I32(2147483647).I32(0),
                             Bytes().I32(1).I32(10001).Text("a").I32(-5).I32(0)};
  for (const std::string& bytes : bad) ExpectRefused(bytes);
  program.files.files["/bad.mak"] = Examples()[1].bytes;
  program.files.readFailsAt["/bad.mak"] = 40;
  ExpectRefused(Examples()[1].bytes);
}

struct SaveFailure {
  const char* name;
  MacroEventList macro;
  std::string message;
};

TEST_F(MacroFile, LeavesTheOldFileWhereAMacroCannotBeSaved) {
  const std::string write = "Fehler beim Schreiben in die Datei";
  const SaveFailure failures[] = {
      {"missing parameter", {Event(40103), Event(10002)}, write},
      {"number that does not fit", {Event(40201, {{"XComp", 3e9}, {"YComp", 0}})}, write},
      {"text that Windows-1252 lacks",
       {Event(40103), Event(20002, {{"FileName", std::string("Ω.vas")}})},
       "Fehler beim Schreiben in die Datei\r\nDer Text 'Ω.vas' enthält Zeichen, die in einer Makrodatei nicht "
       "gespeichert werden können."}};
  for (const SaveFailure& failure : failures) {
    SCOPED_TRACE(failure.name);
    program.files.files = {{"/m.mak", "old"}};
    program.session.macro = failure.macro;
    EXPECT_FALSE(SaveMacroFile(program.session, "/m.mak"));
    ExpectMessage(failure.message);
    EXPECT_EQ(program.files.files["/m.mak"], "old");
    EXPECT_EQ(program.files.files.size(), 1u);
    EXPECT_EQ(program.files.openWrittenFiles, 0);
    EXPECT_EQ(program.session.macro.size(), failure.macro.size());
  }
}

}  // namespace
}  // namespace quiverion::test
