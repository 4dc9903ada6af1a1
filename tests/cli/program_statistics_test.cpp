// quiverionseries-cli statistics and collection, as a script sees them.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "generator/sample_files.h"
#include "statistics/compute_statistic.h"
#include "support/bytes.h"
#include "support/program.h"
#include "support/slashes.h"
#include "support/test_session.h"

namespace quiverion::cli {
namespace {

using test::Bytes;

class ProgramStatistics : public testing::Test {
 protected:
  // Four fields in c.col.
  ProgramStatistics() {
    place.Write("m.mak", Bytes().I32(1).I32(60001).Text("c.col"));
    std::vector<samples::SampleField> fields;
    std::vector<std::string> paths;
    for (int k = 1; k <= 4; ++k) {
      fields.push_back(samples::MakeSampleField({.index = k, .columns = 5, .rows = 4}));
      paths.push_back(Path(k));
      place.Write("serie/" + std::to_string(k) + ".vas", samples::VasBytes(fields.back()));
    }
    const Outcome outcome = RunProgram(place, {"run", "--macro", "m.mak", "serie"});
    EXPECT_EQ(outcome.code, 0) << outcome.out << outcome.err;
    EXPECT_TRUE(place.Read("c.col") == samples::CollectionBytes(fields, paths));
  }

  std::string Path(int k) const { return place.At("serie/" + std::to_string(k) + ".vas"); }

  Workplace place;
};

TEST_F(ProgramStatistics, ListsACollection) {
  EXPECT_EQ(RunProgram(place, {"collection", "list", "c.col"}).out,
            "Name der Kollektion:  c.col\nInhalt:  4 Vektorfelder gesammelt\nGröße der Vektorfelder:  5 x 4\n1\t" +
                Path(1) + "\n2\t" + Path(2) + "\n3\t" + Path(3) + "\n4\t" + Path(4) + "\n");
  const auto json = nlohmann::json::parse(RunProgram(place, {"collection", "list", "--json", "c.col"}).out);
  EXPECT_EQ(json, (nlohmann::json{{"columnCount", 5},
                                  {"rowCount", 4},
                                  {"fieldCount", 4},
                                  {"sourcePaths", {Path(1), Path(2), Path(3), Path(4)}}}));
}

TEST_F(ProgramStatistics, KeepsTheListAListWhateverThePathsHold) {
  std::string bytes = place.Read("c.col");
  place.Write("c.col", bytes.replace(75, 11, "\x1B[31m\n\tx\x7F \xE4"));
  const std::string list = RunProgram(place, {"collection", "list", "c.col"}).out;
  EXPECT_NE(list.find("\n1\t?[31m??x? ä"), std::string::npos) << list;
}

TEST_F(ProgramStatistics, RemovesRecordsByTheirNumbers) {
  EXPECT_EQ(RunProgram(place, {"collection", "remove", "c.col", "3", "1"}).code, 0);
  const auto json = nlohmann::json::parse(RunProgram(place, {"collection", "list", "--json", "c.col"}).out);
  EXPECT_EQ(json["sourcePaths"], (nlohmann::json{Path(4), Path(2)}));
  const Outcome all = RunProgram(place, {"collection", "remove", "c.col", "1", "2"});
  EXPECT_EQ(all.code, 0);
  EXPECT_TRUE(all.err.starts_with("QuiverionSeries - Kollektion gelöscht\n")) << all.err;
  EXPECT_FALSE(place.Has("c.col"));
}

// The same file as from the core, but for its date.
TEST_F(ProgramStatistics, ComputesEveryKind) {
  test::TestSession core;
  core.files.files["c.col"] = place.Read("c.col");
  const std::pair<const char*, StatisticKind> kinds[] = {{"mean", StatisticKind::mean},
                                                         {"stddev", StatisticKind::standardDeviation},
                                                         {"squares", StatisticKind::fluctuationSquares},
                                                         {"product", StatisticKind::fluctuationProduct},
                                                         {"turbulence", StatisticKind::turbulence},
                                                         {"dissipation", StatisticKind::dissipation}};
  for (const auto& [name, kind] : kinds) {
    const Outcome outcome = RunProgram(place, {"statistics", name, "c.col", "neu/r.VAS", "--viscosity", "15E-6"});
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_EQ(outcome.out + outcome.err, "");
    EXPECT_TRUE(ComputeStatistic(core.context, kind, "c.col", "r.vas", 15E-6));
    const std::string& expected = core.files.files["r.vas"];
    const std::size_t date = expected.find(core.clock.DateAndTime()) - 4;  // with its length, which the system decides
    const auto withoutDate = [date](std::string bytes) {
      return bytes.erase(date, 4 + static_cast<unsigned char>(bytes.at(date)));
    };
    EXPECT_TRUE(withoutDate(place.Read("neu/r.VAS")) == withoutDate(expected)) << name;
  }
}

TEST_F(ProgramStatistics, WarnsWhereTheInfoTextLosesCharacters) {
  place.Write("Ω.col", place.Read("c.col"));
  const Outcome outcome = RunProgram(place, {"statistics", "mean", "Ω.col", "r.vas"});
  EXPECT_EQ(outcome.code, 1);
  EXPECT_NE(outcome.err.find("!!! WARNUNG !!!\n    Zeichen, die der Zeichensatz der Datei nicht kennt"),
            std::string::npos);
  EXPECT_TRUE(place.Has("r.vas"));
}

TEST_F(ProgramStatistics, FailsWithAReasonAndLeavesFilesAlone) {
  place.Write("cut.col", place.Read("c.col").substr(0, 300));
  place.Write("old.vas", "old");
  const auto before = place.Files();
  const std::string collection = place.Read("c.col");
  struct Failure {
    std::vector<std::string> arguments;
    int code;
    std::string error;  // what standard error says, from its beginning
  };
  const std::vector<std::string> rate = {"statistics", "dissipation", "c.col", "old.vas"};
  const auto with = [](std::vector<std::string> words, const char* word) { return words.emplace_back(word), words; };
  const Failure failures[] = {
      {rate, 2, "Ungültiger Wert: --viscosity: für dissipation wird die kinematische Viskosität gebraucht\n"},
      {with(rate, "--viscosity="), 2, "Wert fehlt"},
      {with(rate, "--viscosity=0"), 2, "Ungültiger Wert: --viscosity: '0': Sie müssen eine Zahl > 0 eingeben!\n"},
      {with(rate, "--viscosity=-1E-6"), 2, "Ungültiger Wert: --viscosity: '-1E-6': "},
      {with(rate, "--viscosity=1,5E-5"), 2, "Ungültiger Wert: --viscosity: '1,5E-5': "},
      {with(rate, "--viscosity=1e999"), 2, "Ungültiger Wert: --viscosity: '1e999': "},
      {{"statistics", "median", "c.col", "old.vas"}, 2, "Ungültiger Wert: ART: unbekannter Wert 'median'\n"},
      {{"statistics", "mean", "c.col", "old.txt"}, 2, "Ungültiger Wert: ERGEBNIS: 'old.txt' endet nicht auf .vas\n"},
      {{"statistics", "mean", "c.col", "vas"}, 2, "Ungültiger Wert: ERGEBNIS: 'vas' endet nicht auf .vas\n"},
      {{"statistics", "mean", "c.col"}, 2, "Argument fehlt: ERGEBNIS\n"},
      {{"statistics", "mean", "fehlt.col", "old.vas"},
       1,
       "QuiverionSeries - Fehler\nDie Kollektion kann nicht geöffnet werden! Folgender Fehler ist "
       "aufgetreten:\n\nDatei "
       "nicht gefunden   (Fehler-Nr. 53)\nKollektion: 'fehlt.col'\n"},
      {{"statistics", "mean", "cut.col", "old.vas"},
       1,
       "QuiverionSeries - Fehler\nFehler beim Einlesen der Kollektion! Folgender Fehler ist aufgetreten:\n\nEinlesen "
       "hinter Dateiende   (Fehler-Nr. 62)\n"},
      {{"statistics", "mean", "c.col", "old.vas/r.vas"},
       1,
       "Datei speichern unter 'old.vas/r.vas'... !!! FEHLER !!!\n    Die aktuelle Datei kann nicht gespeichert werden, "
       "da "
       "beim Öffnen folgender Fehler aufgetreten ist:\n    Pfad nicht gefunden   (Fehler-Nr. 76)\n"},
      {{"collection", "list", "old.vas"},
       1,
       "QuiverionSeries - FEHLER\n    COL-Datei ist nicht von QuiverionSeries!\nKollektion: 'old.vas'\n"},
      {{"collection", "remove", "c.col", "0"}, 2, "Ungültiger Wert: NUMMER: '0' ist keine Nummer ab 1\n"},
      {{"collection", "remove", "c.col", "-1"}, 2, "Ungültiger Wert: NUMMER: '-1' ist keine Nummer ab 1\n"},
      {{"collection", "remove", "c.col", "1", "zwei"}, 2, "Ungültiger Wert: NUMMER: 'zwei' ist keine Nummer ab 1\n"},
      {{"collection", "remove", "c.col", "2", "1", "2"}, 2, "Ungültiger Wert: NUMMER: '2' ist doppelt angegeben\n"},
      {{"collection", "remove", "c.col", "1", "5"},
       1,
       "'c.col': Die Nummer 5 gibt es nicht, die Zahl der Vektorfelder ist 4.\n"},
      {{"collection", "remove", "cut.col", "1"}, 1, "QuiverionSeries - FEHLER\nBeim Einlesen der Kollektion ist "}};
  for (const Failure& failure : failures) {
    const Outcome outcome = RunProgram(place, failure.arguments);
    EXPECT_EQ(outcome.code, failure.code) << failure.error;
    EXPECT_EQ(test::WithSlashes(outcome.err).substr(0, failure.error.size()), failure.error);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(place.Files(), before) << failure.error;
    EXPECT_EQ(place.Read("c.col"), collection);
    EXPECT_EQ(place.Read("old.vas"), "old");
  }
}

}  // namespace
}  // namespace quiverion::cli
