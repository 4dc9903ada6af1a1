#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <functional>

#include "cli/commands.h"
#include "generator/sample_files.h"
#include "reliability/written_series.h"
#include "support/collection_bytes.h"
#include "support/program.h"

namespace quiverion::cli {
namespace {

using namespace test;
using Kind = SystemCall::Kind;

samples::SampleField Sample(int index) {
  return samples::MakeSampleField({.index = index, .columns = 20, .rows = 15});
}

// A command that writes one file, "ziel/<...>".
struct Command {
  std::function<int()> run;
  std::string target;
  std::string old;  // what stood there
};

class CommandFaults : public testing::Test {
 protected:
  struct Result {
    int code;
    std::string said;
    Tree tree;
  };

  Result Run(const Command& command, const std::function<int(const SystemCall&)>& before) const {
    std::filesystem::remove_all(directory_);
    place_.Write("w/macro.json", R"([{"EventId": "evtInsertComment", "Comment": "Kommentar"}])");
    place_.Write("w/macro.mak", Bytes().I32(1).I32(40101));
    place_.Write("w/a.vas", samples::VasBytes(Sample(0)));
    place_.Write("w/serie.col", collection_);
    std::filesystem::create_directory(directory_ + "ziel");
    if (!command.old.empty()) place_.Write("w/" + command.target, command.old);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    Result result{};
    {
      SystemCalls calls(directory_ + "ziel/");
      calls.largestWrite = 500;
      calls.before = before;
      result.code = command.run();
    }
    result.said = testing::internal::GetCapturedStderr() + testing::internal::GetCapturedStdout();
    result.tree = ReadTree(directory_);
    return result;
  }

  // Every record that stays is there, whatever has become of the move. What it has left half done counts nowhere.
  void ExpectRecordsOf(const std::string& kept, const std::string& found) const {
    const std::string counted = CountedRecords(found);
    const std::size_t size = (collection_.size() - kHeader) / 6, bits = 20 * 15 / 8 + 1;
    for (std::size_t at = kHeader; at < kept.size(); at += size) {
      EXPECT_NE(counted.find(kept.substr(at, size)), std::string::npos);
    }
    for (std::size_t at = kHeader; at < counted.size(); at += size) {
      const bool whole = collection_.find(counted.substr(at, size)) != std::string::npos;
      EXPECT_TRUE(whole || counted.substr(at + size - bits, bits) == std::string(bits, '\0')) << "a mixture";
    }
  }

  std::string collection_ = samples::CollectionBytes({Sample(0), Sample(1), Sample(2), Sample(3), Sample(4), Sample(5)},
                                                     {"1", "2", "3", "4", "5", "6"});
  Workplace place_;
  std::string directory_ = place_.Path() + "w/";
};

TEST_F(CommandFaults, LeaveTheOldFileOrTheNewOneAndSayWhy) {
  const std::string d = directory_;
  const auto import = [&] { return ImportMacro(d + "macro.json", d + "ziel/macro.mak"); };
  const auto mean = [&] { return RunStatistic(StatisticKind::mean, d + "serie.col", d + "ziel/mean.vas", 0.0); };
  const auto run = [&] {
    return RunSeries({.macro = d + "macro.mak", .log = d + "ziel/Log.rtf", .inputs = {d + "a.vas"}});
  };
  const auto remove = [&] { return RemoveFromCollection(d + "ziel/serie.col", {2, 3, 5}); };
  const Command commands[] = {{import, "ziel/macro.mak", ""},
                              {import, "ziel/macro.mak", "an old macro"},
                              {mean, "ziel/mean.vas", "an old result"},
                              {run, "ziel/Log.rtf", "an old log"},
                              {remove, "ziel/serie.col", collection_}};
  int failures = 0;
  for (const Command& command : commands) {
    int calls = 0;
    const Result clean = Run(command, [&](const SystemCall&) { return ++calls, 0; });
    ASSERT_EQ(clean.code, 0) << clean.said;
    const std::string whole = clean.tree.at(command.target);
    for (const Fault& fault : kFaults) {
      for (int from = 0; from < calls && !fault.once; ++from) {
        SCOPED_TRACE(command.target + ": error " + std::to_string(fault.code) + " from call " + std::to_string(from));
        int index = 0;
        bool hit = false;
        const Result result = Run(command, [&](const SystemCall& call) {
          const bool canFail = call.kind != Kind::remove && call.kind != Kind::makeDirectory;
          const bool fails = index++ >= from && canFail;
          hit = hit || fails;
          return fails ? fault.code : 0;
        });
        EXPECT_EQ(result.code != 0, hit);
        for (const auto& [path, bytes] : result.tree) EXPECT_FALSE(IsTemporary(path)) << path;
        const std::string found = result.tree.contains(command.target) ? result.tree.at(command.target) : "";
        if (hit && command.old == collection_) {
          ExpectRecordsOf(whole, found);
        } else if (hit) {
          EXPECT_EQ(found, command.old);
        } else {
          EXPECT_EQ(found.size() / 100, whole.size() / 100) << "it tells times";
        }
        const bool isMacro = command.target == "ziel/macro.mak";
        const std::string reason(isMacro ? "Fehler beim " : ErrorDescription(fault.number));
        const auto says = [&](const std::string& text) { return result.said.find(text) != std::string::npos; };
        EXPECT_EQ(says(reason) || says("Schwerer Fehler"), hit) << result.said;
        failures += hit ? 1 : 0;
        if (HasFailure()) return;
      }
    }
  }
  std::printf("%d faults\n", failures);
  EXPECT_GT(failures, 150);
}

// It was said to be gone, and stood there without a record.
TEST_F(CommandFaults, ACollectionThatCannotBeDeletedIsNotSaidToBe) {
  const auto removeAll = [&] { return RemoveFromCollection(directory_ + "ziel/serie.col", {1, 2, 3, 4, 5, 6}); };
  const Result result = Run({removeAll, "ziel/serie.col", collection_},
                            [](const SystemCall& call) { return call.kind == Kind::remove ? EACCES : 0; });
  EXPECT_EQ(result.code, 1);
  EXPECT_NE(result.said.find("Zugriff verweigert   (Fehler-Nr. 70)"), std::string::npos) << result.said;
  EXPECT_EQ(result.said.find("gelöscht"), std::string::npos) << result.said;
}

}  // namespace
}  // namespace quiverion::cli
