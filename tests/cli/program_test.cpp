// quiverionseries-cli without run: macros, info, commands, help.
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "generator/sample_files.h"
#include "program.h"

namespace quiverion::cli {
namespace {

using Json = nlohmann::json;

class Program : public testing::Test {
 protected:
  Workplace place;
};

const std::string kJson =
    "[\n"
    "  {\"EventId\": \"evtInsertComment\", \"Comment\": \"Düse\"},\n"
    "  {\"EventId\": \"evtAddConstVector\", \"XComp\": 2.0, \"YComp\": -1.0},\n"
    "  {\"EventId\": 12345}\n"
    "]\n";
const std::string kMacro(
    "\x03\0\0\0"
    "\x12\x27\0\0\x04\0\0\0D\xFCse"
    "\x09\x9D\0\0\x02\0\0\0\xFF\xFF\xFF\xFF"
    "\x39\x30\0\0",
    32);

TEST_F(Program, TurnsJsonIntoAMacroFileAndBack) {
  place.Write("m.json", kJson);
  ASSERT_EQ(RunProgram(place, {"macro", "import", "m.json", "neu/m.mak"}).code, 0);
  EXPECT_EQ(place.Read("neu/m.mak"), kMacro);
  const Outcome exported = RunProgram(place, {"macro", "export", "neu/m.mak"});
  EXPECT_EQ(exported.code, 0);
  EXPECT_EQ(exported.out, kJson);
  EXPECT_EQ(RunProgram(place, {"macro", "import", "-", "stdin.mak"}, exported.out).code, 0);
  EXPECT_EQ(place.Read("stdin.mak"), kMacro);
  const Outcome shown = RunProgram(place, {"macro", "show", "stdin.mak"});
  EXPECT_EQ(shown.code, 0);
  EXPECT_EQ(shown.out,
            "1\t10002\tKommentar in den Info-Text einfügen\n2\t40201\tKonstanten Vektor addieren\n"
            "3\t12345\tUnbekannt!!!\n");
  EXPECT_EQ(exported.err + shown.err, "");
}

TEST_F(Program, LeavesAMacroFileAloneWhereTheImportFails) {
  place.Write("old.mak", kMacro);
  place.Write("nan.mak", std::string("\x01\0\0\0\x56\xC3\0\0\0\0\0\0\0\0\xF8\x7F", 16));
  const std::pair<std::string, std::string> cases[] = {
      {"[{\"EventId\": 40103}, {\"EventId\": 10002}]", "Befehl 2: Der Schlüssel 'Comment' fehlt."},
      {"[", "Kein gültiges JSON"},
      {"[{\"EventId\": 10002, \"Comment\": \"\\u03a9\"}]", "Fehler beim Schreiben in die Datei\nDer Text 'Ω'"},
      {"[{\"EventId\": 40103}, {\"EventId\": 50006, \"Value\": 1e400}]", "'-': "}};
  for (const auto& [json, error] : cases) {
    const Outcome outcome = RunProgram(place, {"macro", "import", "-", "old.mak"}, json);
    EXPECT_EQ(outcome.code, 1) << json;
    EXPECT_NE(outcome.err.find(error), std::string::npos) << outcome.err;
    EXPECT_EQ(outcome.err.find("exception"), std::string::npos) << outcome.err;
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(place.Read("old.mak"), kMacro);
  }
  EXPECT_EQ(RunProgram(place, {"macro", "import", "missing.json", "old.mak"}).err,
            "'missing.json': Datei nicht gefunden   (Fehler-Nr. 53)\n");
  const Outcome exported = RunProgram(place, {"macro", "export", "nan.mak"});
  EXPECT_EQ(exported.code, 1);
  EXPECT_EQ(exported.out, "");
  EXPECT_NE(exported.err.find("Befehl 1: 'Value'"), std::string::npos) << exported.err;
}

TEST_F(Program, ReportsAMacroThatCannotBeRead) {
  place.Write("cut.mak", kMacro.substr(0, 20));
  for (const char* verb : {"show", "export"}) {
    for (const char* file : {"cut.mak", "missing.mak"}) {
      const Outcome outcome = RunProgram(place, {"macro", verb, file});
      EXPECT_EQ(outcome.code, 1);
      EXPECT_EQ(outcome.out, "");
      EXPECT_TRUE(outcome.err.starts_with("QuiverionSeries\nFehler beim Öffnen der Datei!\n")) << outcome.err;
    }
  }
}

samples::SampleField Sample() {
  samples::SampleOptions options;
  options.columns = 9;
  options.rows = 7;
  return samples::MakeSampleField(options);
}

TEST_F(Program, TellsWhatAFileHolds) {
  samples::SampleField sample = Sample();
  double fastest = -1e9;
  for (std::size_t p = 0; p < sample.u.size(); ++p) {
    if (sample.status[p] > 0) fastest = std::max(fastest, sample.u[p]);
    if (sample.status[p] <= 0) sample.u[p] = 1e6;  // counts for nothing
  }
  place.Write("a.vas", samples::VasBytes(sample));
  place.Write("b.DAT", samples::DatBytes(sample));
  place.Write("c.vec", samples::VecBytes(sample, 2));
  for (const char* file : {"a.vas", "b.DAT", "c.vec"}) {
    const Outcome outcome = RunProgram(place, {"info", "--json", file});
    ASSERT_EQ(outcome.code, 0) << file << outcome.err;
    EXPECT_EQ(outcome.err, "");
    const Json info = Json::parse(outcome.out);
    EXPECT_EQ(info["columnCount"], 9) << file;
    EXPECT_EQ(info["rowCount"], 7) << file;
    EXPECT_EQ(info["headerLines"].size(), 7u) << file;
    std::int64_t points = 0;
    for (const auto& [status, count] : info["status"].items()) points += count.get<std::int64_t>();
    EXPECT_EQ(points, 63) << file;
    EXPECT_EQ(info["gridStepX"], sample.gridStep) << file;
  }
  const Json info = Json::parse(RunProgram(place, {"info", "--json", "a.vas"}).out);
  EXPECT_EQ(info["validVectorCount"], samples::ValidVectorCount(sample));
  EXPECT_EQ(info["status"]["1"], samples::ValidVectorCount(sample));
  EXPECT_EQ(info["posX"]["min"].get<double>(), samples::PositionX(sample, 1));
  EXPECT_EQ(info["posX"]["max"].get<double>(), samples::PositionX(sample, 9));
  EXPECT_EQ(info["velX"]["max"].get<double>(), fastest);
  EXPECT_LT(samples::ValidVectorCount(sample), 63) << "the sample needs an invalid vector";
  EXPECT_EQ(info["posY"]["max"].get<double>(), samples::PositionY(sample, 1));
  EXPECT_EQ(info["headerLines"][0], sample.headerLines[0]);
  EXPECT_EQ(info["imageWidth"], sample.imageWidth);
  EXPECT_EQ(info["pulseDelay"], sample.pulseDelay);

  const Outcome text = RunProgram(place, {"info", "a.vas"});
  EXPECT_EQ(text.code, 0);
  EXPECT_NE(text.out.find("9 Spalten x 7 Zeilen\n"), std::string::npos) << text.out;
  EXPECT_NE(text.out.find(sample.headerLines[0]), std::string::npos);
  EXPECT_EQ(text.out.find('\r'), std::string::npos);
}

TEST_F(Program, SaysWhyAFileCannotBeRead) {
  place.Write("cut.vas", samples::VasBytes(Sample()).substr(0, 500));
  place.Write("korvo.dat", "Date and Time: 1");
  place.Write("x.txt", "");
  const std::pair<std::string, std::string> cases[] = {{"cut.vas", "(Fehler-Nr. 62)"},
                                                       {"korvo.dat", "Ungültiges Dateiformat: Nicht von Korvo!"},
                                                       {"x.txt", "Dieses Format ist unbekannt!"},
                                                       {"missing.vas", "Datei nicht gefunden   (Fehler-Nr. 53)"}};
  for (const auto& [file, error] : cases) {
    const Outcome outcome = RunProgram(place, {"info", "--json", file});
    EXPECT_EQ(outcome.code, 1) << file;
    EXPECT_EQ(outcome.out, "") << file;
    EXPECT_NE(outcome.err.find(error), std::string::npos) << outcome.err;
  }
}

TEST_F(Program, GivesValidJsonForAFileNameThatIsNoUtf8) {
  place.Write("caf\xE9.vas", samples::VasBytes(Sample()));
  const Outcome outcome = RunProgram(place, {"info", "--json", "caf\xE9.vas"});
  EXPECT_EQ(outcome.code, 0);
  EXPECT_TRUE(Json::accept(outcome.out)) << outcome.out;
}

TEST_F(Program, ListsTheCommands) {
  const Outcome outcome = RunProgram(place, {"commands", "--json"});
  ASSERT_EQ(outcome.code, 0);
  const Json commands = Json::parse(outcome.out);
  ASSERT_EQ(commands.size(), 53u);
  EXPECT_EQ(commands[0],
            Json::parse(R"({"EventId": 10000, "Constant": "evtFileMenu", "Parent": null, "ShortText": "Datei",
                            "LongText": "'Datei'-Menü", "Parameters": []})"));
  EXPECT_EQ(commands[1], Json::parse(R"({"EventId": 10002, "Constant": "evtInsertComment", "Parent": 10000,
                            "ShortText": "Kommentar einfügen", "LongText": "Kommentar in den Info-Text einfügen",
                            "Parameters": [{"Key": "Comment", "Kind": "text"}]})"));
  const Outcome text = RunProgram(place, {"commands"});
  EXPECT_EQ(text.code, 0);
  EXPECT_EQ(std::count(text.out.begin(), text.out.end(), '\n'), 53);
  EXPECT_NE(text.out.find("    40201\tevtAddConstVector\t...addieren\tKonstanten Vektor addieren\tXComp,YComp\n"),
            std::string::npos)
      << text.out;
}

TEST_F(Program, SpeaksGermanInItsHelp) {
  const std::vector<std::string> pages[] = {
      {}, {"run"}, {"macro"}, {"macro", "show"}, {"macro", "export"}, {"macro", "import"}, {"info"}, {"commands"}};
  for (std::vector<std::string> words : pages) {
    words.emplace_back("--help");
    const Outcome outcome = RunProgram(place, words);
    EXPECT_EQ(outcome.code, 0);
    EXPECT_EQ(outcome.err, "");
    EXPECT_NE(outcome.out.find("Aufruf:"), std::string::npos) << outcome.out;
    EXPECT_NE(outcome.out.find("Diese Hilfe zeigen"), std::string::npos) << outcome.out;
    for (const char* english : {"Usage", "Options", "OPTIONS", "ubcommand", "UBCOMMAND", "ositionals", "POSITIONAL",
                                "REQUIRED", "Print", "Display", "TEXT"}) {
      EXPECT_EQ(outcome.out.find(english), std::string::npos) << english << " in\n" << outcome.out;
    }
  }
  const Outcome version = RunProgram(place, {"--version"});
  EXPECT_EQ(version.code, 0);
  EXPECT_TRUE(version.out.starts_with("QuiverionSeries ")) << version.out;
  EXPECT_TRUE(version.out.ends_with("\n"));
}

TEST_F(Program, TreatsAWrongCallAsAUsageError) {
  const std::vector<std::string> calls[] = {
      {"macro"},          {"macro", "show"},      {"macro", "import", "-"},    {"macro", "save"}, {"info"},
      {"info", "a", "b"}, {"info", "--xml", "a"}, {"commands", "--json", "x"}, {"--verbose"}};
  for (const auto& words : calls) {
    const Outcome outcome = RunProgram(place, words);
    EXPECT_EQ(outcome.code, 2) << words.back();
    EXPECT_EQ(outcome.out, "");
    EXPECT_TRUE(outcome.err.ends_with("\nHilfe zeigt: quiverionseries-cli --help\n")) << outcome.err;
  }
}

}  // namespace
}  // namespace quiverion::cli
