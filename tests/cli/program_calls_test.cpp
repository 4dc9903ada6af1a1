// What quiverionseries-cli prints, as a script sees it: the texts are in tests/approved.
#include <gtest/gtest.h>

#include <cmath>
#include <iterator>
#include <map>
#include <sstream>

#include "cli/program_run.h"

namespace quiverion::cli {
namespace {

using test::Bytes;

class ProgramCalls : public ProgramRun {
 protected:
  ProgramCalls() {
    place.Write("leer/x.txt", "");
    place.Write("leer.mak", std::string(4, '\0'));
    place.Write("kaputt.mak", "\x01");
    place.Write("kurz.mak", kSaveMacro.substr(0, 10));
    place.Write("nan.mak", Bytes().I32(1).I32(50006).F64(std::nan("")));
    place.Write("kurz.vas", samples::VasBytes(Sample(0)).substr(0, 500));
    // Whatever the paths hold, the list stays a list.
    const std::string collection =
        samples::CollectionBytes({Sample(0), Sample(1), Sample(2), Sample(3)}, {"1", "2", "\x1B[31m\n\tx\x7F ä", "4"});
    place.Write("c.col", collection);
    place.Write("kurz.col", collection.substr(0, 300));
    place.Write("alt.vas", "old");
  }

  // What a call says, which is written as in a shell; behind "<" stands what comes from standard input.
  std::string Says(const std::string& line) const {
    std::istringstream words(line.substr(0, line.find(" < ")));
    const std::string input = line.find(" < ") == std::string::npos ? "" : line.substr(line.find(" < ") + 3);
    const Outcome outcome = RunProgram(place, {std::istream_iterator<std::string>(words), {}}, input);
    EXPECT_TRUE(outcome.code == 0 || outcome.out.empty()) << line;
    for (const char* english : {"required", "expected", "following", "argument ", "Option"}) {
      EXPECT_EQ(outcome.err.find(english), std::string::npos) << outcome.err;
    }
    return "> " + line + "\n" + outcome.out + outcome.err + "= " + std::to_string(outcome.code) + "\n\n";
  }
};

TEST_F(ProgramCalls, SayWhatTheyAreAskedFor) {
  samples::SampleField sample = samples::MakeSampleField({.columns = 9, .rows = 7});
  for (std::size_t p = 0; p < sample.u.size(); ++p) {
    if (sample.status[p] <= 0) sample.u[p] = 1e6;  // counts for nothing
  }
  place.Write("a.vas", samples::VasBytes(sample));
  place.Write("b.DAT", samples::DatBytes(sample));
  place.Write("c.vec", samples::VecBytes(sample, 2));
  place.Write("Ω.col", place.Read("c.col"));
  std::string said;
  for (const char* call :
       {"info a.vas", "info --json b.DAT", "info c.vec", "commands", "commands --json",
        R"(macro import - neu/m.mak < [{"EventId": "evtInsertComment", "Comment": "Düse"}, {"EventId": 12345}])",
        "macro show neu/m.mak", "macro export neu/m.mak", "collection list c.col", "collection list --json c.col",
        "collection remove c.col 3 1", "collection list c.col", "collection remove c.col 1 2",
        "statistics mean Ω.col r.vas"}) {  // the info text loses a character
    said += Says(call);
  }
  ExpectApproved(place, "calls.txt", said);
  EXPECT_EQ(place.Read("neu/m.mak"), Bytes().I32(2).I32(10002).Text("D\xFCse").I32(12345).Get());
  EXPECT_TRUE(place.Has("r.vas") && !place.Has("c.col"));
}

TEST_F(ProgramCalls, ThatAreRefusedHaveTheirReasonAndLeaveFilesAlone) {
  const std::string calls[] = {"",
                               "lauf",
                               "--verbose",
                               "run --macro s.mak",
                               "run --macro",
                               "run --macro s.mak --on-problem retry serie",
                               "run --macro s.mak --decimal ; serie",
                               "run --macro s.mak --log log.doc serie",
                               "run --macro s.mak serie/b.vas leer",
                               "run --macro fehlt.mak serie",
                               "run --macro kaputt.mak serie",
                               "run --macro s.mak --log s.mak/log.txt serie",
                               "run --macro s.mak --table t.txt serie",
                               "run --macro s.mak --table s.mak/t.csv serie",
                               "run --macro s.mak --log neu/l.txt serie/x.vas serie/b.vas",
                               "run --macro leer.mak serie",
                               "run --macro s.mak leer",
                               "macro",
                               "macro save",
                               "macro import -",
                               "macro import x.json s.mak",
                               R"(macro import - s.mak < [{"EventId": 40103}, {"EventId": 10002}])",
                               "macro import - s.mak < [",
                               R"(macro import - s.mak < [{"EventId": 10002, "Comment": "\u03a9"}])",
                               R"(macro import - s.mak < [{"EventId": 50006, "Value": 1e400}])",
                               "macro export nan.mak",
                               "macro export kurz.mak",
                               "macro show fehlt.mak",
                               "info",
                               "info a b",
                               "info --xml a",
                               "info --json kurz.vas",
                               "info fehlt.vas",
                               "statistics dissipation c.col alt.vas",
                               "statistics dissipation c.col alt.vas --viscosity=",
                               "statistics dissipation c.col alt.vas --viscosity=0",
                               "statistics dissipation c.col alt.vas --viscosity=-1E-6",
                               "statistics dissipation c.col alt.vas --viscosity=1,5E-5",
                               "statistics dissipation c.col alt.vas --viscosity=1e999",
                               "statistics median c.col alt.vas",
                               "statistics mean c.col alt.txt",
                               "statistics mean c.col vas",
                               "statistics mean c.col",
                               "statistics mean fehlt.col alt.vas",
                               "statistics mean kurz.col alt.vas",
                               "statistics mean c.col alt.vas/r.vas",
                               "collection list alt.vas",
                               "collection remove c.col 0",
                               "collection remove c.col -1",
                               "collection remove c.col 1 zwei",
                               "collection remove c.col 2 1 2",
                               "collection remove c.col 1 5",
                               "collection remove kurz.col 1"};
  std::map<std::string, std::string> before;
  for (const std::string& name : place.Files()) before[name] = place.Read(name);
  std::string said;
  for (const std::string& call : calls) {
    said += Says(call);
    EXPECT_FALSE(place.Has("neu")) << "the directory of the log";
    std::map<std::string, std::string> after;
    for (const std::string& name : place.Files()) after[name] = place.Read(name);
    EXPECT_EQ(after, before) << call;
  }
  ExpectApproved(place, "refusals.txt", said);
}

}  // namespace
}  // namespace quiverion::cli
