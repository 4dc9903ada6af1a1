// Which files of a list are results of others.
#include "macro/result_names.h"

#include <gtest/gtest.h>

#include "support/commands.h"

namespace quiverion {
namespace {

MacroEvent Save(const char* prefix, const char* postfix) {
  return test::Command("evtSaveVas", {{"Prefix", std::string(prefix)}, {"Postfix", std::string(postfix)}});
}

TEST(ResultNamesTest, FindsTheResultsOfOtherFilesOfTheList) {
  struct Case {
    std::vector<std::string> names;
    MacroEventList macro;
    const char* results;  // a letter for each name
  };
  const Case cases[] = {
      {{"a.vas", "a_g.vas", "b.vas", "c_g.vas"}, {Save("", "_g")}, "-r--"},
      {{"a.vas", "a_g.vas", "a_g_g.vas"}, {Save("", "_g")}, "-rr"},
      {{"a.dat", "a.vas", "b.vas"}, {Save("", "")}, "-r-"},
      {{"a.vas", "b.vas"}, {Save("", "")}, "--"},
      {{"a.vas", "a_g.vas"}, {Save("Ergebnis\\", "_g")}, "--"},
      {{"a.vas", "x_a.vas", "a_y.vas"}, {Save("x_", ""), test::Command("evtGauss3x3"), Save(".\\", "_y")}, "-rr"},
      {{"a.vas", "VF of a.dat"}, {test::Command("evtStanfordVectorField")}, "--"},
      {{"a.vas", "a_g.vas"}, {MacroEvent(10001), MacroEvent(12345)}, "--"},
      {{}, {Save("", "_g")}, ""}};
  for (const Case& c : cases) {
    std::string found;
    for (const bool is : ResultsAmong(c.names, c.macro)) found += is ? 'r' : '-';
    EXPECT_EQ(found, c.results) << c.names.size() << " names";
  }
}

}  // namespace
}  // namespace quiverion
