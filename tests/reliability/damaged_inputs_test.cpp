#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>

#include "generator/sample_files.h"
#include "support/damage.h"
#include "support/program.h"
#include "support/soak.h"

namespace quiverion::cli {
namespace {

using namespace test;
using Words = std::vector<std::string>;

samples::SampleField Sample(int index) {
  return samples::MakeSampleField({.index = index, .columns = 12, .rows = 9});
}

struct Attempt {
  Words arguments;
  std::vector<int> codes = {0, 1};
  bool changesInput = false;
};

/// The command line with damaged files.
class DamagedInputs : public testing::Test {
 protected:
  DamagedInputs() {
    std::ifstream file(std::string(APPROVED_TEXTS) + "/every_command.json", std::ios::binary);
    const std::string json(std::istreambuf_iterator<char>(file), {});
    place_.Write("every.json", json);
    EXPECT_EQ(RunProgram(place_, {"macro", "import", "every.json", "every.mak"}).code, 0);
    place_.Write("good.vas", samples::VasBytes(Sample(0)));
    originals_ = {{"m.vas", samples::VasBytes(Sample(1))},
                  {"m.dat", samples::DatBytes(Sample(2))},
                  {"m.vec", samples::VecBytes(Sample(3), 1)},
                  {"m.vec", samples::VecBytes(Sample(4), 2)},
                  {"m.vec", samples::VecBytes(Sample(5), 3)},
                  {"m.mak", place_.Read("every.mak")},
                  {"m.json", json},
                  {"m.col", Collection()}};
  }

  static std::string Collection() {
    return samples::CollectionBytes({Sample(0), Sample(1), Sample(2), Sample(3)}, {"a", "b", "c", "d"});
  }

  // A command for the damaged file `name`.
  Attempt AttemptOn(const std::string& name, std::size_t choice) const {
    const auto is = [&name](const char* extension) { return name.ends_with(extension); };
    if (is(".json")) return {{"macro", "import", name, "out.mak"}};
    if (is(".mak")) {
      if (choice % 4 == 0) return {{"macro", "show", name}};
      // Not where its texts lead elsewhere by now.
      const std::string json = RunProgram(place_, {"macro", "export", name}).out;
      const bool stays = json.find("\"/") == std::string::npos && json.find("..") == std::string::npos;
      if (choice % 4 == 1 || !stays) return {{"macro", "export", name}};
      return {{"run", "--macro", name, "--log", "Log.rtf", "good.vas"}, {0, 1, 4}};
    }
    if (is(".col")) {
      constexpr const char* kinds[] = {"mean", "stddev", "squares", "product", "turbulence", "dissipation"};
      if (choice % 3 == 0) return {{"statistics", kinds[choice % 6], name, "out.vas", "--viscosity", "15E-6"}};
      if (choice % 3 == 1) return {{"collection", "list", name, "--json"}};
      return {{"collection", "remove", name, "1", "3"}, {0, 1}, true};
    }
    if (choice % 3 == 0) return {{"info", name, "--json"}};
    return {{"run", "--macro", "every.mak", "--log", "Log.txt", name}, {0, 1, 4}};
  }

  Workplace place_;
  std::vector<std::pair<std::string, std::string>> originals_;
};

TEST_F(DamagedInputs, NeverEndTheProgramByThemselves) {
  Damage damage(Seed());
  double slowest = 0;
  long largest = 0;
  int refused = 0;
  const int times = ShortOrLong(240, 10000);
  for (int k = 0; k < times; ++k) {
    const auto& [name, original] = originals_[static_cast<std::size_t>(k) % originals_.size()];
    const std::string bytes = damage(original, originals_[damage.Below(originals_.size())].second);
    place_.Write(name, bytes);
    const Attempt attempt = AttemptOn(name, damage.Below(12));
    SCOPED_TRACE("seed " + std::to_string(Seed()) + ", case " + std::to_string(k) + ": " + attempt.arguments[0] + " " +
                 attempt.arguments[1] + " " + name);
    const Outcome outcome = RunProgram(place_, attempt.arguments);
    EXPECT_EQ(outcome.signal, 0) << outcome.err;
    EXPECT_NE(std::find(attempt.codes.begin(), attempt.codes.end(), outcome.code), attempt.codes.end())
        << outcome.code << outcome.err;
    EXPECT_TRUE(outcome.code == 0 || outcome.out.size() + outcome.err.size() > 10) << "it says why";
    EXPECT_TRUE(kSanitized || (outcome.seconds < 2 && outcome.peakKilobytes < 256 * 1024))
        << outcome.seconds << " s, " << outcome.peakKilobytes << " KB";
    EXPECT_TRUE(attempt.changesInput || place_.Read(name) == bytes) << "the input is changed";
    slowest = std::max(slowest, outcome.seconds);
    largest = std::max(largest, outcome.peakKilobytes);
    refused += outcome.code != 0 ? 1 : 0;
    if (HasFailure()) return;
  }
  EXPECT_TRUE(refused > times / 4 && refused < times) << refused;
  std::printf("%d damaged inputs, %d refused; at most %.0f ms, %ld KB\n", times, refused, slowest * 1000, largest);
}

}  // namespace
}  // namespace quiverion::cli
