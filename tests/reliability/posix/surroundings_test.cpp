#include <gtest/gtest.h>

#include "generator/sample_files.h"
#include "reliability/written_series.h"
#include "support/collection_bytes.h"
#include "support/program.h"

namespace quiverion::cli {
namespace {

using namespace test;

/// The command line under the limits of schedulers and containers.
class Confined : public testing::Test {
 protected:
  Confined() {
    place_.Write("a.vas", samples::VasBytes(samples::MakeSampleField({.columns = 40, .rows = 30})));
    place_.Write("b.vas", samples::VasBytes(samples::MakeSampleField({.index = 1, .columns = 8, .rows = 6})));
    EXPECT_EQ(RunProgram(place_, {"macro", "import", "-", "m.mak"},
                         R"([{"EventId": "evtSaveVas", "Prefix": "", "Postfix": "_n"},
                             {"EventId": "evtMatlabVectorField", "Prefix": "", "Postfix": ""},
                             {"EventId": "evtCollectStatistics", "FileName": "c.col"}])")
                  .code,
              0);
  }

  Outcome Run(const Surroundings& surroundings, const std::vector<std::string>& inputs) const {
    std::vector<std::string> arguments = {"run", "--macro", "m.mak", "--log", "L.txt"};
    arguments.insert(arguments.end(), inputs.begin(), inputs.end());
    return RunProgram(place_, arguments, {}, {}, surroundings);
  }

  bool NothingTemporaryIsLeft() const {
    for (const std::string& name : place_.Files()) {
      if (IsTemporary(name)) return false;
    }
    return true;
  }

  Workplace place_;
};

// The first file opened got the number of standard output, and what was printed went into it: the log twice, or a
// warning over the header of a collection.
TEST_F(Confined, ClosedStandardStreamsDoNotLeadIntoTheFiles) {
  ASSERT_EQ(Run({}, {"a.vas"}).code, 0);
  // The collection lacks a counted record, so the append warns while the file is open.
  const std::string collection = With(place_.Read("c.col"), kCountAt, 2);
  const auto runOnIt = [&](const std::vector<int>& closed) {
    place_.Write("c.col", collection);
    EXPECT_EQ(Run({.closed = closed}, {"a.vas"}).code, 1);
    Tree tree = ReadTree(place_.Path());
    std::string& log = tree.at("L.txt");
    log.resize(log.find("Makro-Ausführung"));  // a quick run logs no duration
    return tree;
  };
  const Tree open = runOnIt({});
  for (const std::vector<int>& closed : {std::vector{1}, {2}, {0, 1, 2}}) EXPECT_EQ(runOnIt(closed), open);
}

// The system ends a program that writes beyond the allowed size with a signal, unless the program ignores it.
TEST_F(Confined, AFileBeyondTheAllowedSizeIsAFullDisk) {
  const Outcome outcome = Run({.largestFile = 9000}, {"a.vas", "b.vas"});
  EXPECT_EQ(outcome.signal, 0);
  EXPECT_EQ(outcome.code, 3) << outcome.out;
  EXPECT_NE(outcome.err.find("Der Datenträger ist voll!"), std::string::npos) << outcome.err;
  EXPECT_FALSE(place_.Has("a_n.vas"));
  EXPECT_TRUE(NothingTemporaryIsLeft());
}

// Sanitizers need additional memory and descriptors, so these tests are for the normal build.
#ifndef __SANITIZE_ADDRESS__
TEST_F(Confined, WithoutAFreeDescriptorNothingIsBegun) {
  EXPECT_EQ(Run({.openFiles = 5}, {"a.vas"}).code, 0) << "one result beside the log";
  place_.Write("c.col", "");
  const Outcome outcome = Run({.openFiles = 4}, {"a.vas"});
  EXPECT_EQ(outcome.code, 1) << "the log takes the last one";
  EXPECT_NE(outcome.out.find("Zu viele Dateien   (Fehler-Nr. 67)"), std::string::npos) << outcome.out;
  EXPECT_TRUE(NothingTemporaryIsLeft());
}

TEST_F(Confined, AFieldThatDoesNotFitIntoMemoryCostsOnlyItself) {
  place_.Write("big.vas", samples::VasBytes(samples::MakeSampleField({.columns = 1500, .rows = 1500})));
  const Outcome outcome = Run({.memory = 40 << 20}, {"big.vas", "b.vas"});
  EXPECT_EQ(outcome.code, 1) << outcome.err;
  EXPECT_NE(outcome.out.find("Nicht genügend Speicher   (Fehler-Nr. 7)"), std::string::npos) << outcome.out;
  EXPECT_TRUE(place_.Has("b_n.vas"));
  EXPECT_FALSE(place_.Has("big_n.vas"));
}
#endif

}  // namespace
}  // namespace quiverion::cli
