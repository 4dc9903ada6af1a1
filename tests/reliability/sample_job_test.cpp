#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iterator>
#include <sstream>

#include "cli/commands.h"
#include "generator/sample_files.h"
#include "macro/macro_file.h"
#include "macro/run_driver.h"
#include "macro/series_files.h"
#include "statistics/compute_statistic.h"
#include "support/program.h"
#include "support/slashes.h"
#include "support/test_session.h"

namespace quiverion::cli {
namespace {

namespace fs = std::filesystem;
using namespace test;

// FNV-1a with 64 bits.
std::uint64_t Checksum(std::string_view bytes) {
  std::uint64_t sum = 0xCBF29CE484222325;
  for (const char byte : bytes) sum = (sum ^ static_cast<unsigned char>(byte)) * 0x100000001B3;
  return sum;
}

void WriteSeries(const Workplace& place) {
  for (int k = 0; k < 10; ++k) {
    const auto field = samples::MakeSampleField({.index = k});
    const std::string name = "series/run" + std::to_string(10 + k);
    if (k % 5 == 0) place.Write(name + ".vas", samples::VasBytes(field));
    if (k % 5 == 1) place.Write(name + ".dat", samples::DatBytes(field));
    if (k % 5 > 1) place.Write(name + ".vec", samples::VecBytes(field, k % 5 - 1));
  }
}

// The sample macro, with paths in the current directory.
std::string SampleMacro() {
  std::ifstream file(SAMPLE_MACRO, std::ios::binary);
  std::string json(std::istreambuf_iterator<char>(file), {});
  const std::string sample = "build/sample/";
  for (std::size_t at; (at = json.find(sample)) != std::string::npos;) json.erase(at, sample.size());
  return json;
}

std::string SumLine(const std::string& name, std::string_view bytes) {
  std::ostringstream line;
  line << std::hex << std::setw(16) << std::setfill('0') << Checksum(bytes) << std::dec << std::setfill(' ')
       << std::setw(10) << bytes.size() << "  " << name << '\n';
  return line.str();
}

// Relative paths only, because collections and results contain paths.
class SampleJob : public testing::Test {
 protected:
  SampleJob() { fs::current_path(place_.Path()); }
  ~SampleJob() override { fs::current_path(before_); }

  const fs::path before_ = fs::current_path();
  const Workplace place_;
};

// Every bit of the output of the job, independent of compiler, optimisation and instructions.
TEST_F(SampleJob, GivesTheSameBytesEverywhere) {
  WriteSeries(place_);
  place_.Write("sample.json", SampleMacro());
  ASSERT_EQ(ImportMacro("sample.json", "sample.mak"), 0);
  const auto files = MakeSystemFileSystem();
  ScriptedProgram program(*files);
  Session& session = program.session;
  ASSERT_TRUE(LoadMacroFile(session, "sample.mak"));
  session.inputDirectory = "series/";
  session.selectedFiles = ListSeriesFiles(*files, "series");
  RunMacro(session);
  const char* const kinds[] = {"mean", "stddev", "squares", "product", "turbulence", "dissipation"};
  for (std::size_t kind = 0; kind < std::size(kinds); ++kind) {
    const std::string output = std::string(kinds[kind]) + ".vas";
    EXPECT_TRUE(ComputeStatistic(session.context, static_cast<StatisticKind>(kind), "Serie.col", output, 15E-6));
  }
  EXPECT_TRUE(program.ui.messages.empty());
  std::string sums = SumLine("(log)", WithSlashes(program.TakeLog()));
  for (const std::string& name : place_.Files()) {
    if (name != "sample.json") sums += SumLine(name, place_.Read(name));
  }
  ExpectApproved(place_, "sample_job.txt", sums);
}

}  // namespace
}  // namespace quiverion::cli
