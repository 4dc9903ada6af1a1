// What a person reads about the commands of a macro.
#include "macro/command_words.h"

#include <gtest/gtest.h>

#include "support/approved.h"
#include "support/commands.h"

namespace quiverion {
namespace {

using test::Command;

std::string Described(const MacroEvent& event) {
  std::string text = std::to_string(event.EventId()) + "  " + ParametersInBrief(event) + "\n";
  for (const std::string& line : ParametersInWords(event)) text += "    " + line + "\n";
  return text;
}

TEST(CommandWordsTest, NameEveryParameterOfEveryCommand) {
  std::string text;
  for (const CommandRow& row : CommandCatalogue()) {
    if (!row.parameters.empty()) text += Described(Command(std::string(row.constantName).c_str()));
  }
  test::ExpectApproved("command_words.txt", text);
}

TEST(CommandWordsTest, SaysInOneLineWhatACommandUses) {
  const std::pair<MacroEvent, std::string> cases[] = {
      {Command("evtFaultVectors", {{"ChkAbsDeviation", 1}, {"CompareVectorType", 3}}),
       "Median 5 x 5, Abweichung > 30 %"},
      {Command("evtFaultVectors", {{"ChkAbsDeviation", 1},
                                   {"ChkDirDeviation", 1},
                                   {"CompareVectorType", 1},
                                   {"CboLocalMiddleX", 199},
                                   {"LogicalOr", false}}),
       "lokaler Mittelwert 399 x 5, Abweichung > 30 % und Richtung > 10°"},
      {Command("evtFaultVectors", {{"ChkAbsInterval", 1}, {"ChkYComp", 1}, {"OptYCompIntOut", false}}),
       "Betrag außerhalb 0 bis 10 m/s oder y-Komponente innerhalb -10 bis 10 m/s"},
      {Command("evtFaultVectors",
               {{"ChkDirDeviation", 1}, {"CompareVectorType", 4}, {"TxtUserVectorX", std::string("2.5")}}),
       "Vektor (2.5; 0) m/s, Richtung > 10°"},
      {Command("evtFaultVectors", {{"ChkXComp", 1}, {"CompareVectorType", 9}}),
       "x-Komponente außerhalb -10 bis 10 m/s"},
      {Command("evtSaveVas", {{"Prefix", std::string("Ergebnis\\")}, {"Postfix", std::string("_g")}}),
       "Ergebnis\\ ... _g"},
      {Command("evtSaveVas", {{"Postfix", std::string("_g")}}), "... _g"},
      {Command("evtSwirl2Background"), ""},
      {Command("evtVortexCentres", {{"AutoTrafo", true}}), "transformierte Felder speichern"},
      {MacroEvent(12345), ""},
      {MacroEvent(10001), "? ... ?"},  // a damaged one
      {MacroEvent(30001), "kein Kriterium"}};
  for (const auto& [event, expected] : cases) EXPECT_EQ(ParametersInBrief(event), expected);
}

}  // namespace
}  // namespace quiverion
