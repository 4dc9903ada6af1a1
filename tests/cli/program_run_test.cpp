// quiverionseries-cli run, as a script sees it.
#include <gtest/gtest.h>

#include "cli/program_run.h"
#include "macro/command_catalogue.h"
#include "support/stalled_program.h"

namespace quiverion::cli {
namespace {

using test::Bytes;

// The log up to its verdict. The duration varies from run to run, and a very short one is not logged.
std::string UpToVerdict(const std::string& log) {
  return log.substr(0, log.find('\n', log.rfind("Makro-Ausf")) + 1);
}

TEST_F(ProgramRun, LogsEveryCommandAndEveryFormat) {
  place.Write("serie/a.dat", samples::DatBytes(Sample(1)));
  place.Write("serie/C.VEC", samples::VecBytes(Sample(2), 1));
  place.Write("serie/notes.txt", "no field");
  place.Write("serie/vas", "no extension");
  place.Write("serie/sub/d.vas", "not in this directory");
  place.Write("serie/im Weg/b.vas/directory", "");
  const std::string macro = std::string(APPROVED_TEXTS) + "/every_command.json";
  ASSERT_EQ(RunProgram(place, {"macro", "import", macro, "m.mak"}).code, 0);
  const Outcome outcome = RunProgram(place, {"run", "--macro", "m.mak", "--log", "X.RTF", "serie/b.vas"});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_EQ(outcome.err, "");
  ExpectApproved(place, "every_command.txt", UpToVerdict(outcome.out));
  const std::string commands = RunProgram(place, {"macro", "export", "m.mak"}).out;
  for (const CommandRow& row : CommandCatalogue()) {
    const std::string name = "\"" + std::string(row.constantName) + "\"";
    EXPECT_TRUE(row.IsMenu() || commands.find(name) != std::string::npos) << name << " is missing in " << macro;
  }
  EXPECT_TRUE(place.Read("X.RTF").starts_with("{\\rtf1"));
  ExpectApproved(place, "maxima.txt", place.Read("wirbel/Maxima.txt"));
  for (const char* exported : {"b_1.txt", "neu/b_2.txt", "b_3.txt", "b_4.txt", "b_5.txt", "b_7.csv", "b_8.csv"}) {
    EXPECT_TRUE(place.Has(std::string("serie/") + exported)) << exported;
  }
  for (const char* same : {"serie/", "./serie/../serie"}) {
    EXPECT_EQ(RunProgram(place, {"run", "--macro", "s.mak", same}).code, 0);
    for (const char* saved : {"a_s.vas", "b_s.vas", "C_s.vas"}) EXPECT_TRUE(place.Has(std::string("serie/") + saved));
  }
}

// A VEC header and no vectors.
std::string VecHeader(int imageType, int subType, int rows) {
  std::string bytes(256, '\0');
  bytes.replace(0, 2, Bytes().I16(imageType).Get());
  bytes.replace(10, 6, Bytes().I16(rows).I16(2).I16(subType).Get());
  return bytes;
}

TEST_F(ProgramRun, SaysWhatIsWrongWithADamagedFile) {
  const std::string vas = samples::VasBytes(Sample(0)), dat = samples::DatBytes(Sample(0));
  std::string vec = samples::VecBytes(Sample(0), 1);
  vec.replace(256, 4, Bytes().F32(7).Get());
  const std::size_t window = dat.find('\n', dat.find("x")) + 1;  // the line after the image size
  const std::pair<std::string, std::string> damaged[] = {
      {"Magie.vas", "quiverion" + vas.substr(9)},
      {"kurz.vas", vas.substr(0, 400)},
      {"fremd.dat", "Date and Time: 1"},
      {"leer.dat", ""},
      {"breit.dat", dat.substr(0, window) + "W:9000x9" + dat.substr(dat.find('\r', window))},
      {"hoch.dat", dat.substr(0, window) + "W:9x9000" + dat.substr(dat.find('\r', window))},
      {"Bild.vec", VecHeader(19, 1, 9)},
      {"neun.vec", VecHeader(20, 1, 10)},
      {"zwei.vec", VecHeader(20, 2, 9)},
      {"zehn.vec", VecHeader(20, 3, 9)},
      {"vier.vec", VecHeader(20, 4, 9)},
      {"kurz.vec", VecHeader(20, 1, 9)},
      {"Status.vec", vec}};
  for (const auto& [name, bytes] : damaged) place.Write("serie/" + name, bytes);
  std::vector<std::string> words = {"run", "--on-problem", "ignore", "--macro", "s.mak", "serie/fehlt.vas"};
  for (const auto& [name, bytes] : damaged) words.push_back("serie/" + name);
  words.emplace_back("serie/b.vas");
  const Outcome outcome = RunProgram(place, words);
  EXPECT_EQ(outcome.code, 1);
  ExpectApproved(place, "damaged_files.txt", UpToVerdict(outcome.out) + "\n--- stderr\n" + outcome.err);
  EXPECT_EQ(place.Read("serie/b_s.vas"), place.Read("serie/b.vas"));
}

TEST_F(ProgramRun, WritesATableInWhichOnlyTheSecondsVary) {
  place.Write("serie/a.dat", "leer");
  std::string tables[2];
  for (std::string& table : tables) {
    EXPECT_EQ(RunProgram(place, {"run", "--macro", "s.mak", "--table", "neu/T.CSV", "--decimal", ",", "serie/a.dat",
                                 "serie/b.vas"})
                  .code,
              1);
    table = place.Read("neu/T.CSV");
    for (std::size_t end = table.find("\r\n") + 2; (end = table.find("\r\n", end)) != std::string::npos; end += 2) {
      const std::size_t begin = table.rfind(';', end) + 1;
      EXPECT_EQ(table.substr(begin, end - begin).find_first_not_of("0123456789,"), std::string::npos) << table;
      table.erase(begin, end - begin);
      end = begin;
    }
  }
  EXPECT_EQ(tables[0], tables[1]);
  EXPECT_NE(tables[0].find("b.vas;fertig;0;;19;19;0;0;;\r\n"), std::string::npos) << tables[0];
}

TEST_F(ProgramRun, TakesFileNamesOfAnyKind) {
  for (const std::string name : {"Düse 3 – Ω 🌀", " blanks ", "-dash", "it's $(quoted) %s"}) TakesFile(name);
  EXPECT_EQ(RunProgram(place, {"run", "--macro", "s.mak", "--log", "log.txt", "Reihe ä"}).code, 0);
  EXPECT_EQ(place.Files().size(), 2 + 4 * 3 + 1u) << "every file and its result have a result";
}

// A dropped connection (SIGHUP) lost the log and left temporary files.
TEST_F(ProgramSignals, EndTheRunBehindTheRunningCommand) {
  for (const int signal : AbortSignals()) {
    StalledProgram program(place, {"run", "--macro", "s.mak", "--log", "log.txt", "viele"});
    ASSERT_TRUE(program.WaitUntilStalled());
    program.Signal(signal);
    const Outcome outcome = program.Finish();
    EXPECT_EQ(outcome.code, 3);
    EXPECT_NE(outcome.out.find("--- Makro-Ausführung frühzeitig ABGEBROCHEN ---"), std::string::npos) << outcome.out;
    EXPECT_EQ(outcome.out.find("49.vas"), std::string::npos) << "no further file is started";
    EXPECT_NE(place.Read("log.txt").find("ABGEBROCHEN"), std::string::npos);
    for (const std::string& name : place.Files()) {
      EXPECT_EQ(name.find(".tmp"), std::string::npos) << name;
      if (!name.ends_with("_s.vas")) continue;
      EXPECT_EQ(place.Read(name).size(), place.Read("viele/10.vas").size()) << name;
    }
  }
}

TEST_F(ProgramSignals, EndTheProgramAtOnceTheSecondTime) {
  StalledProgram program(place, {"run", "--macro", "s.mak", "viele"});
  ASSERT_TRUE(program.WaitUntilStalled());
  program.Signal(AbortSignals().front());
  program.Signal(AbortSignals().back());
  EXPECT_EQ(program.Finish().signal, AbortSignals().back());
}

}  // namespace
}  // namespace quiverion::cli
