#include "app/statistics_flow.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "generator/sample_files.h"
#include "support/scripted_dialogs.h"
#include "support/test_session.h"

namespace quiverion {
namespace {

constexpr const char* kFirst =
    "Wählen sie zunächst die Statistik-Kollektion (Datei mit Endung '.col') aus, die für die Berechnung ";
constexpr const char* kSecond = "Wählen Sie nun den Dateinamen, unter dem das erzeugte Vektorfeld (mit ";

class StatisticsFlow : public testing::Test {
 protected:
  StatisticsFlow() {
    samples::SampleOptions options{.columns = 4, .rows = 3};
    program.files.files["/c/Serie1.col"] =
        samples::CollectionBytes({samples::MakeSampleField(options), samples::MakeSampleField(options)}, {"a", "b"});
  }
  bool Run(StatisticKind kind) {
    const auto texts = std::ranges::find(AllStatisticTexts(), kind, &StatisticTexts::kind);
    return StatisticsCommandFlow(program.context, dialogs, *texts, "/mess");
  }

  test::TestSession program;
  test::ScriptedDialogs dialogs;
};

TEST_F(StatisticsFlow, EveryItemSaysWhatItComputesAndProposesAName) {
  const struct {
    StatisticKind kind;
    std::string title, first, second, name;
  } cases[] = {
      {StatisticKind::mean, "Mittelwert berechnen", "des Mittelwertes", "den Mittelwerten", "AVG"},
      {StatisticKind::dissipation, "Energiedissipationsrate berechnen",
       "der Energiedissipationsrate (für isotrope Turbulenz)", "der Energiedissipationsrate als x-Komponente", "DISS"},
  };
  for (const auto& c : cases) {
    program.ui.messages.clear();
    dialogs.files = {"/c/Serie1.dat", "/c/out." + c.name};
    dialogs.texts = {"15E-6"};
    EXPECT_TRUE(Run(c.kind));
    ASSERT_EQ(program.ui.messages.size(), 2u);
    for (const Message& box : program.ui.messages) EXPECT_EQ(box.title, "QuiverionSeries - " + c.title);
    EXPECT_EQ(program.ui.messages[0].text, kFirst + c.first + " benutzt werden soll...");
    const std::string viscosity =
        c.name == "DISS" ? "Die verwendete kinenamtische Viskosität beträgt:  1.5E-05 m/s²\r\n\r\n" : "";
    EXPECT_EQ(program.ui.messages[1].text, viscosity + kSecond + c.second + ") gespeichert werden soll...");
    const FileQuestion& collection = dialogs.fileQuestions[dialogs.fileQuestions.size() - 2];
    EXPECT_EQ(collection.directory + "|" + collection.fileName, "/mess|");
    EXPECT_EQ(dialogs.fileQuestions.back().directory, "/c/");
    EXPECT_EQ(dialogs.fileQuestions.back().fileName, "Serie1" + c.name + ".vas");
    EXPECT_TRUE(program.files.files.contains("/c/out.vas")) << c.name;
    program.files.files.erase("/c/out.vas");
  }
  EXPECT_EQ(dialogs.textQuestions.size(), 1u);
  EXPECT_EQ(dialogs.textQuestions[0].preset, "15E-6");
}

TEST_F(StatisticsFlow, AViscosityIsANumberAboveZero) {
  const struct { const char *answer, *shown; } cases[] = {{"abc", "0"}, {"-25E-6", "-2.5E-05"}, {"0", "0"}};
  for (const auto& c : cases) {
    dialogs.files = {"/c/Serie1"};
    dialogs.texts = {c.answer};
    EXPECT_FALSE(Run(StatisticKind::dissipation));
    EXPECT_EQ(program.ui.messages.back().title, "QuiverionSeries - Fehlerhafte Eingabe");
    EXPECT_EQ(program.ui.messages.back().text,
              "Ihre Eingabe lautete:  " + std::string(c.shown) + " m/s²\r\n\r\nSie müssen eine Zahl > 0 eingeben!");
  }
  dialogs.files = {"/c/Serie1"};
  dialogs.texts = {"1E999"};
  EXPECT_FALSE(Run(StatisticKind::dissipation));
  EXPECT_EQ(program.ui.messages.back().text, "Die Zahl '1E999' ist zu groß!");
  dialogs.files = {"/c/Serie1"};
  dialogs.texts = {"1,5E-5"};
  EXPECT_FALSE(Run(StatisticKind::dissipation));  // the output dialog is cancelled
  EXPECT_TRUE(program.ui.messages.back().text.starts_with("Die verwendete kinenamtische Viskosität beträgt:  1 m/s²"));
}

}  // namespace
}  // namespace quiverion
