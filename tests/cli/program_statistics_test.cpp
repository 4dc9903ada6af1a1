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

}  // namespace
}  // namespace quiverion::cli
