#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "generator/sample_files.h"
#include "platform/files/file_system.h"
#include "platform/files/paths.h"
#include "support/bytes.h"
#include "support/program.h"
#include "support/soak.h"

namespace quiverion::cli {
namespace {

namespace fs = std::filesystem;
using namespace test;

/// The command line with more data than anybody measures.
class Load : public testing::Test {
 protected:
  void Import(const std::string& json) const {
    place_.Write("m.json", json);
    ASSERT_EQ(RunProgram(place_, {"macro", "import", "m.json", "m.mak"}).code, 0);
  }

  Outcome Run(const std::vector<std::string>& arguments, const char* what, int code = 0) const {
    Outcome outcome = RunProgram(place_, arguments);
    EXPECT_EQ(outcome.code, code) << outcome.err << outcome.out.substr(0, 2000);
    std::printf("%s: %ld MB\n", what, outcome.peakKilobytes / 1024);
    return outcome;
  }

  Workplace place_;
};

TEST_F(Load, ManyFilesTakeNoMoreMemory) {
  Import(R"([{"EventId": "evtGauss3x3"}, {"EventId": "evtSaveVas", "Prefix": "neu/", "Postfix": ""},
             {"EventId": "evtCollectStatistics", "FileName": "serie.col"}])");
  const std::string bytes = samples::VasBytes(samples::MakeSampleField({.columns = 5, .rows = 4}));
  const int few = ShortOrLong(150, 10000), many = 10 * few;
  for (int k = 0; k < many; ++k) {
    const std::string name = "/f" + std::to_string(1000000 + k) + ".vas";
    place_.Write("many" + name, bytes);
    if (k < few) place_.Write("few" + name, bytes);
  }
  const Outcome first = Run({"run", "--macro", "m.mak", "few"}, "few files");
  const Outcome second = Run({"run", "--macro", "m.mak", "many"}, "many files");
  EXPECT_NE(second.out.find("gesammelten Dateien: " + std::to_string(few + many) + "\n"), std::string::npos);
  EXPECT_NE(second.out.find("erfolgreich beendet"), std::string::npos);
  EXPECT_TRUE(kSanitized || second.peakKilobytes - first.peakKilobytes < (many - few) / 4 + 4096) << "256 bytes a file";
}

// Offsets beyond 4 GB. The file is sparse, so it needs no disk space.
TEST_F(Load, ACollectionOfMoreThan4GigabytesIsListedAppendedToAndShortened) {
  constexpr int side = 1000;
  constexpr std::int64_t header = 75, record = 128 + 16 * side * side + side * side / 8 + 1, count = 290;
  const auto field = samples::MakeSampleField({.columns = side, .rows = side});
  const std::string one = samples::CollectionBytes({field}, {"far away"});
  ASSERT_EQ(static_cast<std::int64_t>(one.size()), header + record);
  place_.Write("big.col", one.substr(0, 31) + Bytes().I32(static_cast<std::int32_t>(count)).Get() + one.substr(35, 40));
  fs::resize_file(place_.Path() + "big.col", static_cast<std::uintmax_t>(header + count * record));
  place_.Write("a.vas", samples::VasBytes(field));
  Import(R"([{"EventId": "evtCollectStatistics", "FileName": "big.col"}])");
  Run({"run", "--macro", "m.mak", "a.vas"}, "append behind 4 GB");
  const Outcome list = Run({"collection", "list", "big.col"}, "list");
  EXPECT_NE(list.out.find("291"), std::string::npos);
  if (IsSoak()) Run({"statistics", "stddev", "big.col", "out.vas"}, "standard deviation over 9.4 GB");
  Run({"collection", "remove", "big.col", "2", "5"}, "removal");
  ASSERT_EQ(fs::file_size(place_.Path() + "big.col"), static_cast<std::uintmax_t>(header + (count - 1) * record));
  std::ifstream file(place_.Path() + "big.col", std::ios::binary);
  file.seekg(header + record);
  std::string moved(static_cast<std::size_t>(record), '\0');
  file.read(moved.data(), record);
  EXPECT_TRUE(moved.substr(128) == one.substr(header + 128)) << "the last record lies in the first hole";
}

TEST_F(Load, APathOf4000CharactersOfEveryKindIsAPath) {
  // Created and removed step by step, because system calls accept paths hardly longer than this.
  const std::string odd = kPathSeparator == '/' ? "\nzweite Zeile \"b\"" : "";  // not allowed in names everywhere
  const std::string part = "Düse  3, Wirbel 🌀; 'a' $(x) %s%n " + odd + std::string(170, 'x');
  std::string directory = place_.Path();
  while (directory.size() + part.size() + 1 < 3950) directory += part + kPathSeparator;
  directory += std::string(3950 - directory.size(), 'y') + kPathSeparator;
  CreatePathDirectories(*MakeSystemFileSystem(), directory);
  const std::string bytes = samples::VasBytes(samples::MakeSampleField({.columns = 5, .rows = 4}));
  const std::string name = "Lauf 🌀 ä" + odd + "%s%n .vas";
  std::ofstream(PathOf(directory + name), std::ios::binary) << bytes;
  Import(R"([{"EventId": "evtSaveVas", "Prefix": "neu %s%n ", "Postfix": ""},
             {"EventId": "evtCollectStatistics", "FileName": "serie.col"}])");
  ASSERT_GT(directory.size() + name.size(), 3960u);
  // A collection cannot represent the emoji of the name: a warning.
  const Outcome run =
      Run({"run", "--macro", "m.mak", "--log", directory + "Log.rtf", directory + name}, "long paths", 1);
  EXPECT_EQ(run.out.find("!!! FEHLER !!!"), std::string::npos);
  EXPECT_TRUE(fs::exists(PathOf(directory + "neu %s%n " + name)));
  EXPECT_TRUE(fs::exists(PathOf(directory + "Log.rtf")));
  EXPECT_NE(run.out.find("neu %s%n Lauf"), std::string::npos);
  // Longer than the system allows: refused, nothing else.
  const Outcome refused = RunProgram(place_, {"run", "--macro", "m.mak", directory + directory + name});
  EXPECT_EQ(refused.code, 4) << refused.err;
}

}  // namespace
}  // namespace quiverion::cli
