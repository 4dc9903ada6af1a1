#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

#include "generator/sample_files.h"
#include "reliability/written_series.h"
#include "support/collection_bytes.h"
#include "support/posix/processes.h"
#include "support/soak.h"

namespace quiverion::cli {
namespace {

using namespace test;

constexpr int kFiles = 24;

samples::SampleField Sample(int index) {
  return samples::MakeSampleField({.index = index, .columns = 60, .rows = 45});
}

/// The program itself, killed at random moments of its life.
class Killed : public testing::Test {
 protected:
  Killed() {
    for (int k = 0; k < kFiles; ++k) inputs_["f" + std::to_string(100 + k) + ".vas"] = samples::VasBytes(Sample(k));
  }

  void LayFiles(const Tree& files) const {
    for (const std::string& name : place_.Files()) std::remove((place_.Path() + name).c_str());
    for (const auto& [name, bytes] : files) place_.Write(name, bytes);
  }

  std::vector<std::string> RunArguments(const std::string& macro) const {
    std::vector<std::string> arguments = {"run", "--macro", macro, "--log", "Log.rtf"};
    for (const auto& [name, bytes] : inputs_) arguments.push_back(name);
    return arguments;
  }

  // Starts over `files` and is killed, again and again; `examine` looks at what is left each time, and at the end.
  template <class Examine>
  void KillOften(const Tree& files, const std::vector<std::string>& arguments, Examine examine) {
    std::mt19937 random(Seed());
    LayFiles(files);
    const Outcome whole = RunProgram(place_, arguments);
    ASSERT_EQ(whole.code, 0) << whole.err << whole.out;
    end_ = ReadTree(place_.Path());
    const int times = ShortOrLong(10, 200);
    double latest = whole.seconds;  // follows what the machine does beside
    for (int k = 0, killed = 0; killed < times; ++k) {
      ASSERT_LT(k, 20 * times) << "the program is never killed";
      const double moment = std::uniform_real_distribution(0.0, latest)(random);
      SCOPED_TRACE("seed " + std::to_string(Seed()) + ", kill " + std::to_string(k) + " after " +
                   std::to_string(moment) + " s");
      LayFiles(files);
      const bool alive = KillProgram(place_, arguments, moment);
      killed += alive ? 1 : 0;
      latest = alive ? std::min(whole.seconds, latest * 1.02) : latest * 0.95;
      const Tree found = ReadTree(place_.Path());
      for (const auto& [name, bytes] : files) ASSERT_TRUE(found.contains(name)) << name;
      for (const auto& [name, bytes] : found) {
        if (!IsTemporary(name)) examine(name, bytes);
      }
      if (HasFailure()) return;
    }
  }

  // A file that is replaced as a whole.
  void ExpectOldOrNew(const Tree& files, const std::string& name, const std::string& bytes) const {
    const auto old = files.find(name);
    const bool isOld = old != files.end() && bytes == old->second;
    EXPECT_TRUE(isOld || bytes == end_.at(name)) << name << ": " << bytes.size() << " bytes";
  }

  // The records that the header counts, each whole.
  std::vector<std::string> Records(const std::string& collection) {
    place_.Write("seen.col", collection);
    const Outcome list = RunProgram(place_, {"collection", "list", "seen.col"});
    EXPECT_EQ(list.code, 0) << list.err;
    const std::string counted = CountedRecords(collection);
    const std::size_t size = (CountedRecords(end_.at("serie.col")).size() - kHeader) / CountOf(end_.at("serie.col"));
    std::vector<std::string> records;
    for (std::size_t at = kHeader; at < counted.size(); at += size) records.push_back(counted.substr(at, size));
    EXPECT_EQ(records.size(), CountOf(collection)) << "each counted record is there";
    return records;
  }

  static std::size_t CountOf(const std::string& collection) {
    return static_cast<unsigned char>(collection[kCountAt]);  // few
  }

  // Records are only added, in the order of the series.
  void ExpectBeginning(const std::string& collection, std::size_t least) {
    const auto records = Records(collection), all = Records(end_.at("serie.col"));
    EXPECT_GE(records.size(), least);
    EXPECT_TRUE(std::equal(records.begin(), records.end(), all.begin()));
  }

  void Import(const std::string& json) {
    ASSERT_EQ(RunProgram(place_, {"macro", "import", "-", "macro.mak"}, json).code, 0);
    inputs_["macro.mak"] = place_.Read("macro.mak");
  }

  Workplace place_;
  Tree inputs_;  // macro.mak is no input of the run
  Tree end_;     // after a run that nobody disturbs
};

TEST_F(Killed, ARunLeavesInputsAndResultsWhole) {
  const auto arguments = RunArguments("macro.mak");
  Import(R"([{"EventId": "evtGauss3x3"},
             {"EventId": "evtVortexCentres", "FileName": "wirbel.txt", "AutoTrafo": false},
             {"EventId": "evtSaveVas", "Prefix": "", "Postfix": ""},
             {"EventId": "evtSaveVas", "Prefix": "neu/", "Postfix": "_s"},
             {"EventId": "evtMatlabVectorField", "Prefix": "", "Postfix": ""},
             {"EventId": "evtCollectStatistics", "FileName": "serie.col"}])");
  Tree files = inputs_;
  files["Log.rtf"] = "an old log";
  KillOften(files, arguments, [&](const std::string& name, const std::string& bytes) {
    const bool wholeLog = bytes.starts_with("{\\rtf") && bytes.ends_with("}\r\n");  // says how long the run took
    if (name == "serie.col") return ExpectBeginning(bytes, 1);
    if (name == "Log.rtf" && wholeLog) return;
    if (name == "wirbel.txt" && end_.at(name).starts_with(bytes)) return;
    ExpectOldOrNew(files, name, bytes);
  });
}

class KilledCollection : public Killed {
 protected:
  KilledCollection() {
    std::vector<samples::SampleField> fields;
    std::vector<std::string> paths;
    for (int k = 0; k < 40; ++k) {
      fields.push_back(Sample(k));
      paths.push_back("record " + std::to_string(k));
    }
    collection_ = samples::CollectionBytes(fields, paths);
  }
  std::string collection_;
};

TEST_F(KilledCollection, AnAppendLeavesWhatWasThereAndCountsOnlyWholeRecords) {
  const auto arguments = RunArguments("macro.mak");
  Import(R"([{"EventId": "evtCollectStatistics", "FileName": "serie.col"}])");
  Tree files = inputs_;
  files["serie.col"] = collection_;
  KillOften(files, arguments, [&](const std::string& name, const std::string& bytes) {
    if (name == "serie.col") ExpectBeginning(bytes, 40);
  });
}

TEST_F(KilledCollection, ARemovalLosesNoOtherRecord) {
  std::vector<std::string> arguments = {"collection", "remove", "serie.col"};
  for (int number = 1; number <= 40; number += 3) arguments.push_back(std::to_string(number));
  const Tree files = {{"serie.col", collection_}};
  KillOften(files, arguments, [&](const std::string& name, const std::string& bytes) {
    if (name != "serie.col") return;
    const auto records = Records(bytes);
    for (const std::string& kept : Records(end_.at(name))) {
      EXPECT_NE(std::find(records.begin(), records.end(), kept), records.end());
    }
  });
}

}  // namespace
}  // namespace quiverion::cli
