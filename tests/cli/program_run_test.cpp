// quiverionseries-cli run, as a script sees it.
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdio>

#include "generator/sample_files.h"
#include "program.h"

namespace quiverion::cli {
namespace {

// Saves every file as VAS with the postfix "_s".
const std::string kSaveMacro("\x01\0\0\0\x11\x27\0\0\0\0\0\0\x02\0\0\0\x5F\x73", 18);

samples::SampleField Sample(int index) {
  samples::SampleOptions options;
  options.index = index;
  options.columns = 5;
  options.rows = 4;
  return samples::MakeSampleField(options);
}

std::string Title(std::size_t left, const std::string& text, std::size_t right) {
  return std::string(left, '-') + " " + text + " " + std::string(right, '-') + "\n";
}

const std::string kSuccess = Title(32, "Makro-Ausführung erfolgreich beendet", 31);
const std::string kFaulty = Title(32, "Makro-Ausführung FEHLERHAFT beendet", 32);

// The log without its last lines, which tell how long the run took.
std::string WithoutDuration(const std::string& log) {
  const std::size_t at = log.find("\nDauer: ");
  return at == std::string::npos ? log : log.substr(0, at);
}

class ProgramRun : public testing::Test {
 protected:
  ProgramRun() {
    place.Write("s.mak", kSaveMacro);
    place.Write("serie/b.vas", samples::VasBytes(Sample(0)));
  }
  std::string Saved(const std::string& name, const std::string& result) const {
    return "Orginaldatei '" + place.Path() + "serie/" + name + "' einladen... fertig\nDatei speichern unter '" +
           place.Path() + "serie/" + result + "'... fertig\n";
  }

  Workplace place;
};

TEST_F(ProgramRun, TakesADirectoryInTheOrderOfTheFileList) {
  place.Write("serie/a.dat", samples::DatBytes(Sample(1)));
  place.Write("serie/C.VEC", samples::VecBytes(Sample(2), 1));
  place.Write("serie/notes.txt", "no field");
  place.Write("serie/sub/d.vas", "not in this directory");
  for (const char* input : {"serie", "serie/", "./serie", "serie/../serie"}) {
    const Outcome outcome = RunProgram(place, {"run", "--macro", "s.mak", input});
    EXPECT_EQ(outcome.code, 0) << input;
    EXPECT_EQ(outcome.err, "") << input;
    EXPECT_EQ(outcome.out.find('\r'), std::string::npos);
    EXPECT_EQ(outcome.out.find('\x1b'), std::string::npos) << "colour is for terminals";
    std::string log = WithoutDuration(outcome.out);
    const std::string there = place.Path() + std::string(input) + "/";
    EXPECT_LT(log.find(" a.dat "), log.find(" b.vas ")) << log;
    EXPECT_LT(log.find(" b.vas "), log.find(" C.VEC ")) << log;
    EXPECT_TRUE(log.ends_with(kSuccess)) << log;
    const std::vector<std::string> expected = {"s.mak",         "serie/C.VEC",     "serie/C_s.vas",
                                               "serie/a.dat",   "serie/a_s.vas",   "serie/b.vas",
                                               "serie/b_s.vas", "serie/notes.txt", "serie/sub/d.vas"};
    EXPECT_EQ(place.Files(), expected) << input;
    for (const char* result : {"serie/C_s.vas", "serie/a_s.vas", "serie/b_s.vas"})
      std::remove((place.Path() + result).c_str());
  }
}

TEST_F(ProgramRun, WritesTheWholeLogToStandardOutput) {
  place.Write("serie/a.vas", samples::VasBytes(Sample(1)));
  const Outcome outcome = RunProgram(place, {"run", "--macro", "s.mak", "serie/b.vas", "serie/a.vas", "serie/b.vas"});
  EXPECT_EQ(WithoutDuration(outcome.out), Title(47, "b.vas", 47) + Saved("b.vas", "b_s.vas") + Title(47, "a.vas", 47) +
                                              Saved("a.vas", "a_s.vas") + kSuccess)
      << "in the order given, a file named twice once";
  EXPECT_EQ(outcome.code, 0);
  EXPECT_EQ(place.Read("serie/a_s.vas"), place.Read("serie/a.vas"));
}

struct Refusal {
  std::vector<std::string> arguments;
  int code;
  std::string error;  // part of what standard error says
};

TEST_F(ProgramRun, RefusesWhatCannotBeStarted) {
  place.Write("other/c.vas", samples::VasBytes(Sample(1)));
  place.Write("leer/x.txt", "");
  place.Write("leer.mak", std::string(4, '\0'));
  place.Write("kaputt.mak", "\x01");
  const std::string missing = "Die Datei '" + place.Path() +
                              "serie/x.vas' kann nicht geöffnet werden!\nDatei nicht vorhanden, beschädigt oder "
                              "wird bereits verwendet.\n";
  const Refusal refusals[] = {
      {{}, 2, "quiverionseries-cli --help"},
      {{"lauf"}, 2, "Befehl"},
      {{"run", "serie"}, 2, "--macro"},
      {{"run", "--macro", "s.mak"}, 2, "INPUT"},
      {{"run", "--macro"}, 2, "--macro"},
      {{"run", "--macro", "s.mak", "--makro", "x", "serie"}, 2, "--makro"},
      {{"run", "--macro", "s.mak", "--on-problem", "retry", "serie"}, 2, "retry"},
      {{"run", "--macro", "s.mak", "--decimal", ";", "serie"}, 2, ";"},
      {{"run", "--macro", "s.mak", "--log", "log.doc", "serie"}, 2, "log.doc"},
      {{"run", "--macro", "s.mak", "serie", "other/c.vas"}, 2, "other/c.vas"},
      {{"run", "--macro", "s.mak", "serie/b.vas", "other"}, 2, "other"},
      {{"run", "--macro", "fehlt.mak", "serie"}, 1, "QuiverionSeries\nFehler beim Öffnen der Datei!\n"},
      {{"run", "--macro", "kaputt.mak", "serie"}, 1, "kaputt.mak"},
      {{"run", "--macro", "s.mak", "--log", "s.mak/log.txt", "serie"},
       1,
       "Log-Datei speichern\nDie Log-Datei kann nicht gespeichert werden unter 's.mak/log.txt'!\nPfad nicht gefunden   "
       "(Fehler-Nr. 76)\n"},
      {{"run", "--macro", "s.mak", "--log", "l.txt", "serie/x.vas", "serie/b.vas"},
       4,
       "QuiverionSeries  -  Fehler im Makro\n" + missing},
      {{"run", "--macro", "s.mak", "--on-problem", "abort", "serie/x.vas"}, 4, missing},
      {{"run", "--macro", "leer.mak", "serie"}, 4, "Sie müssen wenigstens einen Makrobefehl wählen!\n"},
      {{"run", "--macro", "s.mak", "leer"}, 4, "Sie müssen mindestens eine Datei auswählen!\n"}};
  const std::vector<std::string> before = place.Files();
  for (const Refusal& refusal : refusals) {
    std::string words;
    for (const std::string& argument : refusal.arguments) words += argument + " ";
    const Outcome outcome = RunProgram(place, refusal.arguments);
    EXPECT_EQ(outcome.code, refusal.code) << words << outcome.err;
    EXPECT_NE(outcome.err.find(refusal.error), std::string::npos) << words << outcome.err;
    EXPECT_EQ(outcome.out, "") << words;
    EXPECT_EQ(place.Files(), before) << words;
    for (const char* english : {"required", "expected", "following", "argument ", "Option"}) {
      EXPECT_EQ(outcome.err.find(english), std::string::npos) << outcome.err;
    }
  }
}

TEST_F(ProgramRun, WritesNothingWhereTheChecksRefuseTheRun) {
  EXPECT_EQ(RunProgram(place, {"run", "--macro", "s.mak", "--log", "neu/l.txt", "serie/x.vas"}).code, 4);
  EXPECT_FALSE(place.Has("neu")) << "the directory of the log";
  EXPECT_EQ(place.Files(), (std::vector<std::string>{"s.mak", "serie/b.vas"}));
}

TEST_F(ProgramRun, GoesOnBehindAProblemThatIsIgnored) {
  const Outcome outcome =
      RunProgram(place, {"run", "--on-problem", "ignore", "--macro", "s.mak", "serie/x.vas", "serie/b.vas"});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_TRUE(outcome.err.starts_with("QuiverionSeries  -  Fehler im Makro\nDie Datei '")) << outcome.err;
  const std::string log = WithoutDuration(outcome.out);
  EXPECT_TRUE(log.starts_with(Title(47, "x.vas", 47))) << log;
  EXPECT_NE(log.find("einladen... !!! FEHLER !!!\n"), std::string::npos);
  EXPECT_TRUE(log.ends_with(Title(47, "b.vas", 47) + Saved("b.vas", "b_s.vas") + kFaulty)) << log;
  EXPECT_TRUE(place.Has("serie/b_s.vas"));
}

TEST_F(ProgramRun, FailsWhereAResultCannotBeWritten) {
  place.Write("serie/b_s.vas/in the way", "");
  const Outcome outcome = RunProgram(place, {"run", "--macro", "s.mak", "serie/b.vas"});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_NE(outcome.out.find("    Fehler beim Zugriff auf Pfad/Datei   (Fehler-Nr. 75)\n"), std::string::npos);
  EXPECT_TRUE(WithoutDuration(outcome.out).ends_with(kFaulty));
  EXPECT_EQ(place.Files().size(), 3u) << "no temporary file is left";
}

TEST_F(ProgramRun, FailsWhereStandardOutputIsFull) {
  EXPECT_EQ(RunProgram(place, {"run", "--macro", "s.mak", "serie"}, "", "/dev/full").code, 1);
  EXPECT_EQ(RunProgram(place, {"commands"}, "", "/dev/full").code, 1);
  EXPECT_TRUE(place.Has("serie/b_s.vas")) << "the run itself goes on";
}

TEST_F(ProgramRun, SavesTheLogAsTextAndFormatted) {
  const Outcome plain = RunProgram(place, {"run", "--macro", "s.mak", "--log", "x.txt", "serie"});
  EXPECT_EQ(plain.code, 0);
  std::string expected;
  for (const char c : plain.out) expected += c == '\n' ? "\r\n" : std::string(1, c);
  EXPECT_EQ(place.Read("x.txt"), expected);

  const Outcome formatted = RunProgram(place, {"run", "--macro", "s.mak", "--log", "X.RTF", "serie"});
  EXPECT_EQ(formatted.code, 0);
  const std::string rtf = place.Read("X.RTF");
  EXPECT_TRUE(rtf.starts_with("{\\rtf1")) << rtf;
  EXPECT_NE(rtf.find("Makro-Ausf\\'fchrung erfolgreich beendet"), std::string::npos) << rtf;
  EXPECT_TRUE(rtf.ends_with("}\r\n"));
  EXPECT_EQ(std::count(rtf.begin(), rtf.end(), '{'), std::count(rtf.begin(), rtf.end(), '}'));
}

TEST_F(ProgramRun, TakesFileNamesOfAnyKind) {
  const std::string names[] = {"Düse 3 – Ω", " blanks ", "a.b", "caf\xE9", "-dash", "it's \"quoted\"", "tab\there"};
  for (const std::string& name : names) {
    place.Write("Reihe ä/" + name + ".vas", samples::VasBytes(Sample(0)));
    const Outcome one = RunProgram(place, {"run", "--macro", "s.mak", "Reihe ä/" + name + ".vas"});
    EXPECT_EQ(one.code, 0) << name << one.err;
    EXPECT_EQ(place.Read("Reihe ä/" + name + "_s.vas"), place.Read("Reihe ä/" + name + ".vas")) << name;
  }
  for (const char* log : {"log.rtf", "log.txt"}) {
    EXPECT_EQ(RunProgram(place, {"run", "--macro", "s.mak", "--log", log, "Reihe ä"}).code, 0);
  }
  EXPECT_EQ(place.Files().size(), 2 + 7 * 4 + 2u) << "every file and its result have a result";
}

TEST_F(ProgramRun, MakesADirectoryNamedInThePrefix) {
  const std::string json = R"([{"EventId": "evtSaveVas", "Prefix": "neu\\tief/x ", "Postfix": ""}])";
  ASSERT_EQ(RunProgram(place, {"macro", "import", "-", "p.mak"}, json).code, 0);
  EXPECT_EQ(RunProgram(place, {"run", "--macro", "p.mak", "serie"}).code, 0);
  EXPECT_EQ(place.Read("serie/neu/tief/x b.vas"), place.Read("serie/b.vas"));
}

class ProgramSignals : public ProgramRun {
 protected:
  ProgramSignals() {
    for (int k = 10; k < 50; ++k) place.Write("viele/" + std::to_string(k) + ".vas", samples::VasBytes(Sample(k)));
  }
};

TEST_F(ProgramSignals, EndTheRunBehindTheRunningCommand) {
  for (const int signal : {SIGTERM, SIGINT}) {
    StalledProgram program(place, {"run", "--macro", "s.mak", "--log", "log.txt", "viele"});
    ASSERT_TRUE(program.WaitUntilStalled());
    program.Signal(signal);
    const Outcome outcome = program.Finish();
    EXPECT_EQ(outcome.code, 3);
    const std::string log = WithoutDuration(outcome.out);
    EXPECT_TRUE(log.ends_with(Title(30, "Makro-Ausführung frühzeitig ABGEBROCHEN", 30))) << log;
    EXPECT_TRUE(log.starts_with(Title(47, "10.vas", 46)));
    EXPECT_EQ(log.find("49.vas"), std::string::npos) << "no further file is started";
    EXPECT_TRUE(place.Read("log.txt").find("ABGEBROCHEN") != std::string::npos);
    for (const std::string& name : place.Files()) {
      EXPECT_EQ(name.find(".tmp"), std::string::npos) << name;
      if (name.ends_with("_s.vas")) {
        EXPECT_EQ(place.Read(name).size(), place.Read("viele/10.vas").size()) << name;
      }
    }
  }
}

TEST_F(ProgramSignals, EndTheProgramAtOnceTheSecondTime) {
  for (const auto& [first, second] : {std::pair{SIGTERM, SIGTERM}, {SIGINT, SIGINT}, {SIGINT, SIGTERM}}) {
    StalledProgram program(place, {"run", "--macro", "s.mak", "viele"});
    ASSERT_TRUE(program.WaitUntilStalled());
    program.Signal(first);
    program.Signal(second);
    Outcome outcome;
    EXPECT_TRUE(program.EndsByItself(outcome)) << first << ", " << second;
    EXPECT_EQ(outcome.signal, second) << first << ", " << second;
  }
}

}  // namespace
}  // namespace quiverion::cli
