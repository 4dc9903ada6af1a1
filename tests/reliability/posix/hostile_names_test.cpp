#include <gtest/gtest.h>

#include "generator/sample_files.h"
#include "support/program.h"

namespace quiverion::cli {
namespace {

// An archive may contain such a file. Its name was taken for a path: another file was read, and results were written
// there.
TEST(HostileNamesHere, ANameWithASeparatorIsNoFileOfTheSeries) {
  const Workplace place;
  const std::string hostile = "texts/serie/..\\..\\secret.vas";
  place.Write("secret.vas", samples::VasBytes(samples::MakeSampleField({.columns = 4, .rows = 3})));
  place.Write("texts/serie/a.vas", samples::VasBytes(samples::MakeSampleField({.columns = 30, .rows = 24})));
  place.Write(hostile, "");
  const std::string macro = R"([{"EventId": "evtSaveVas", "Prefix": "", "Postfix": "_s"}])";
  EXPECT_EQ(RunProgram(place, {"macro", "import", "-", "m.mak"}, macro).code, 0);
  EXPECT_EQ(RunProgram(place, {"run", "--macro", "m.mak", "texts/serie"}).code, 0);
  // Named by a shell, it was read there, and its results overwrote the files next to it.
  EXPECT_EQ(RunProgram(place, {"run", "--macro", "m.mak", hostile}).code, 4);
  EXPECT_EQ(place.Files(),
            (std::vector<std::string>{"m.mak", "secret.vas", hostile, "texts/serie/a.vas", "texts/serie/a_s.vas"}));
}

}  // namespace
}  // namespace quiverion::cli
